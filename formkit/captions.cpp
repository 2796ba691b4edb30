// SPDX-License-Identifier: BSD-3-Clause
#include "captions_p.h"

#include <QLabel>

Captions::Captions(const QWidget *form)
{
    const QList<QLabel *> labels = form->findChildren<QLabel *>();
    for (QLabel *label : labels) {
        if (label->buddy() && !m_labels.contains(label->buddy()))
            m_labels.insert(label->buddy(), label);
    }
}

QString Captions::textOf(const QWidget *control) const
{
    const QLabel *const label = of(control);
    QString text = label ? spoken(label->text()) : QString();
    if (text.endsWith(QLatin1Char(':')))
        text.chop(1);
    return text;
}

QString Captions::spoken(const QString &text)
{
    QString said;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('&') && ++i == text.size())
            break;
        said += text.at(i);
    }
    return said;
}
