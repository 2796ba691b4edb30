#pragma once

#include <QMap>
#include <QObject>
#include <QStringList>

// What a box reports by its signals, in order: "id=5 code=XATH".
template <typename Box> class Reports
{
public:
    using Report = void (Box::*)(const QString &);

    Reports(Box *box, const QMap<QString, Report> &reports)
    {
        for (auto report = reports.cbegin(); report != reports.cend(); ++report)
            QObject::connect(box, *report, box, [this, name = report.key()](const QString &text) {
                m_log << name + '=' + text;
            });
    }
    QString take()
    {
        const QString log = m_log.join(' ');
        m_log.clear();
        return log;
    }

private:
    QStringList m_log;
};
