// SPDX-License-Identifier: BSD-3-Clause
#include "fieldstypes.h"

namespace {

NamedFieldType named(const char *name, int code, int parameter)
{
    return {QString::fromLatin1(name), FieldType(FieldType::Type(code), parameter)};
}

const FieldType *findIn(const QVector<NamedFieldType> &types, const QString &name)
{
    for (const NamedFieldType &entry : types) {
        if (entry.name == name)
            return &entry.type;
    }
    return nullptr;
}

} // namespace

const QVector<NamedFieldType> &FieldsTypes::all()
{
    static const QVector<NamedFieldType> types = {
        named("stock_id", 1, 0),    named("board_id", 1, 0),    named("sec_id", 2, 0),
        named("order_id", 2, 0),    named("deal_id", 2, 0),     named("trs_id", 1, 0),
        named("sess_id", 1, 0),     named("account", 5, 20),    named("login", 5, 20),
        named("stock_code", 5, 20), named("account_to", 5, 20), named("stock_code_to", 5, 20),
        named("row_id", 2, 0),      named("moment", 6, 0),      named("msecs", 2, 0),
        named("money", 4, 2),       named("price", 4, 5),       named("value", 4, 2),
        named("greeks", 4, 5),      named("volat", 4, 2),       named("percent", 4, 2),
        named("quantity", 2, 0),    named("fee", 4, 2),         named("strike", 4, 5),
        named("comment", 5, 20),    named("sec_code", 5, 25),   named("sec_name", 5, 40),
        named("buysell", 5, 1),     named("sectype", 5, 1),     named("secstate", 5, 1),
        named("sessstate", 5, 1),   named("status", 5, 1),      named("board_list", 7, 0),
        named("ext_id", 2, 0),      named("msg_id", 1, 0),      named("text", 5, 256),
        named("server_time", 6, 0), named("int_id", 2, 0),      named("int_rev", 2, 0),
        named("int_act", 2, 0),
    };
    return types;
}

const FieldType *FieldsTypes::find(const QString &name)
{
    return findIn(all(), name);
}

const QVector<NamedFieldType> &Gexabus::GxFieldsTypes::all()
{
    static const QVector<NamedFieldType> types = {
        named("account", 5, 7),    named("code_vcb", 5, 25),   named("section", 5, 50),
        named("isin", 5, 25),      named("repl", 2, 0),        named("rf_code", 5, 2),
        named("bf_code", 5, 4),    named("client_code", 5, 7), named("settlement_account", 5, 12),
        named("agreement", 5, 50), named("mm_fulfil", 4, 2),   named("mm_is_fulfil", 1, 0),
    };
    return types;
}

const FieldType *Gexabus::GxFieldsTypes::find(const QString &name)
{
    return findIn(all(), name);
}
