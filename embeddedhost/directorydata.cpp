// SPDX-License-Identifier: BSD-3-Clause
#include "directorydata_p.h"

namespace {

// Reads the rows of a table by the names of its columns.
class Reader
{
public:
    explicit Reader(const TableContent &content) : m_content(content) {}
    int count() const { return m_content.count(); }
    Field cell(int row, const char *column) const
    {
        const RowLayout &layout = m_content.layout();
        return layout.cell(m_content.at(row), layout.schema().columnIndex(QLatin1String(column)));
    }

private:
    const TableContent &m_content;
};

} // namespace

DirectoryData::DirectoryData(const TableContent &stocks, const TableContent &boards)
{
    const Reader stock(stocks);
    for (int i = 0; i < stock.count(); ++i) {
        const int id = stock.cell(i, "stock_id").toInteger();
        const QString code = stock.cell(i, "stock_code").asStaticString();
        m_stockCodes.insert(id, code);
        m_stockIds.insert(code, id);
    }
    const Reader board(boards);
    for (int i = 0; i < board.count(); ++i) {
        const boardid id{board.cell(i, "stock_id").toInteger(),
                         board.cell(i, "board_id").toInteger()};
        const QString code = board.cell(i, "board_code").asStaticString();
        m_boards[id] = {code, board.cell(i, "flags").toInteger64(),
                        board.cell(i, "position").toInteger() != 0};
        m_boardIds.insert({id.stock_id, code}, id.board_id);
    }
}

const DirectoryData::Board *DirectoryData::board(boardid id) const
{
    const auto found = m_boards.find(id);
    return found == m_boards.end() ? nullptr : &found->second;
}

int DirectoryData::boardId(const QString &stockCode, const QString &boardCode) const
{
    const auto stock = m_stockIds.find(stockCode);
    return stock == m_stockIds.end() ? 0 : m_boardIds.value({*stock, boardCode});
}
