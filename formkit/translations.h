// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QLocale>

namespace Formkit {

/// Shows the library's texts in the language of a locale: German, Russian or Arabic, or else as
/// they stand in the code. When an application starts, the library does so for QLocale(); a program
/// that lets its user choose a language calls this again. What is shown already is not changed.
/// docs/translations.md says how a program brings a language of its own. True when the language is
/// one of the library's.
FORMKIT_EXPORT bool loadTranslations(const QLocale &locale = QLocale());

} // namespace Formkit
