// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "numbertext_p.h"

/// By how many places a suffix moves the decimal point to the right: 3 for "k", 6 for "m", in
/// either case, Latin or Cyrillic; 0 for what is no suffix.
int placesOfSuffix(QChar suffix);

/// A number with its decimal point moved to the right. It has no zeros in front that mean nothing.
QString multiplied(const NumberText &number, int places, const LocaleSymbols &symbols);
