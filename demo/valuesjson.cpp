// SPDX-License-Identifier: BSD-3-Clause
#include "valuesjson.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("ValuesJson", text);
}

int lineOf(const QByteArray &content, int offset)
{
    return content.left(offset).count('\n') + 1;
}

} // namespace

QJsonObject ValuesJson::toJson(const Values &values)
{
    QJsonObject object;
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        object.insert(value.key(), value->toString());
    return object;
}

Values ValuesJson::read(const QString &file, QString *error)
{
    QFile input(file);
    if (!input.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: %2").arg(file, input.errorString());
        return {};
    }
    const QByteArray content = input.readAll();
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(content, &problem);
    if (!document.isObject()) {
        const QString reason = problem.error == QJsonParseError::NoError
                                   ? tr("not an object of names and values")
                                   : problem.errorString();
        *error = QStringLiteral("%1:%2: %3")
                     .arg(file, QString::number(lineOf(content, problem.offset)), reason);
        return {};
    }
    Values values;
    const QJsonObject object = document.object();
    for (auto member = object.begin(); member != object.end(); ++member) {
        const QJsonValue value = member.value();
        if (value.isBool()) {
            values.insert(member.key(), value.toBool() ? QStringLiteral("Y") : QStringLiteral("N"));
        } else if (value.isString() || value.isDouble()) {
            values.insert(member.key(), value.toVariant().toString());
        } else {
            *error = tr("%1: \"%2\" is neither a text nor a number").arg(file, member.key());
            return {};
        }
    }
    return values;
}
