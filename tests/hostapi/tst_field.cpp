#include "support/stricttest.h"

#include <hostapi/exception.h>
#include <hostapi/field.h>

namespace {

// One cell of any type, and the presence bit of its neighbour.
struct Cell
{
    Field field()
    {
        void *places[] = {nullptr, &int32, &int64, &real, &number, &text, &moment, &boards};
        return Field(type, places[type.type()], &presence, 2);
    }

    FieldType type;
    quint32 presence = 1;
    qint32 int32 = 7;
    qint64 int64 = 5000000000;
    double real = 7;
    decimal number = 7;
    QString text = "7";
    datetime moment = datetime(QDate(2007, 7, 7));
    boardlist boards = {{7, 7}};
};

} // namespace

class FieldTest : public StrictTest
{
    Q_OBJECT

private slots:
    void assign();
    void readInteger();
    void compare();
    void boards();
};

// Into a cell that was null, and one that was not; what fails leaves either as it was.
void FieldTest::assign()
{
    const std::tuple<FieldType, QVariant, QString> rows[] = {
        {FieldType::Integer, "-2147483648", "-2147483648"},
        {FieldType::Integer, "2147483648", "Can't convert from '2147483648'' to integer"},
        {FieldType::Integer, -123, "-123"},
        {FieldType::Integer64, "9223372036854775807", "9223372036854775807"},
        {FieldType::Integer64, "%1%2", "Can't convert from '%1%2'' to integer64"},
        {FieldType::Integer64, -123, "-123"},
        {FieldType::Double, "0.1", "0.1"},
        {FieldType::Double, "0,1", "Can't convert from '0,1'' to double"},
        {FieldType::Double, -123, "-123"},
        {FieldType(FieldType::Decimal, 2), "12.345", "12.345"},
        {FieldType(FieldType::Decimal, 2), "1e5", "Can't convert from '1e5'' to decimal"},
        {FieldType(FieldType::Decimal, 2), -123, "-123.00"},
        {FieldType(FieldType::Decimal, 18), -123, "Decimal overflow."},
        {FieldType(FieldType::String, 3), "abcd", "abc"},
        {FieldType(FieldType::String, 2), "a\U0001d11eb", "a"},
        {FieldType(FieldType::String, 3), -123, "-12"},
        {FieldType::DateTime, "2015-03-01", "2015.03.01 00:00:00.000"},
        {FieldType::DateTime, "soon", ""},
        {FieldType::DateTime, -123, "Can't convert from integer to datetime"},
        {FieldType::BoardList, "1,2", "Can't convert from string to boardlist"},
        {FieldType::BoardList, -123, "Can't convert from integer to boardlist"},
    };
    for (const auto &[type, value, result] : rows) {
        for (const quint32 presence : {1, 3}) {
            Cell cell{type, presence};
            Field field = cell.field();
            const QString before = field.toString();
            try {
                if (value.type() == QVariant::Int)
                    field = value.toInt();
                else
                    field = value.toString();
                QVERIFY(!field.isNull());
                QCOMPARE(field.toString(), result);
            } catch (const Exception &failure) {
                QCOMPARE(failure.text(), result);
                QCOMPARE(cell.presence, presence);
                QCOMPARE(field.toString(), before);
            }
            field = QString();
            QCOMPARE(field.toString(), QString());
            QCOMPARE(cell.presence, 1u);
        }
    }
}

void FieldTest::readInteger()
{
    for (int code = 1; code <= 7; ++code) {
        Cell cell{FieldType::Type(code)};
        QCOMPARE(cell.field().toInteger64(), Q_INT64_C(0));
        cell.presence = 3;
        QString failure;
        try {
            QCOMPARE(cell.field().toInteger64(), code == 1 ? cell.int32 : cell.int64);
            QCOMPARE(cell.field().toInteger(), code == 1 ? 7 : 2147483647);
            cell.int64 = -cell.int64;
            QCOMPARE(cell.field().toInteger(), code == 1 ? 7 : -2147483647 - 1);
        } catch (const Exception &thrown) {
            failure = thrown.text();
        }
        QCOMPARE(failure, QString(code <= 2 ? "" : "Incorrect type conversion."));
    }
    QCOMPARE(Field().toInteger(), 0);
}

void FieldTest::compare()
{
    const std::tuple<int, QString, int, QString, int> rows[] = {
        {1, "", 5, "", 0},
        {7, "", 1, "-5", -1},
        {1, "-5", 7, "", 1},
        {1, "9", 5, "1", -4},
        {1, "-2147483648", 1, "2147483647", -1},
        {2, "9223372036854775807", 2, "-9", 1},
        {3, "1.0", 3, "2.0", -1},
        {3, "2.0", 3, "1.0", 0},
        {4, "-1.50", 4, "-1.25", -1},
        {4, "1.50", 4, "1.5", 0},
        {5, "a", 5, "B", 1},
        {5, "ab", 5, "abcd", -1},
        {6, "2026.03.05", 6, "2026.03.04", 1},
    };
    for (const auto &[code, text, otherCode, otherText, order] : rows) {
        Cell cell{FieldType(FieldType::Type(code), 20)};
        Cell other{FieldType(FieldType::Type(otherCode), 20)};
        cell.field() = text;
        other.field() = otherText;
        QVERIFY2(cell.field().compare(other.field()) == order, qPrintable(text));
    }
}

void FieldTest::boards()
{
    bool ok = false;
    QCOMPARE(boardListToString(boardListFromString("2,-1;1,9;1,9", &ok)), QString("2,-1;1,9;1,9"));
    QVERIFY(ok && boardListFromString("", &ok).isEmpty() && ok);
    for (const char *text : {"1", "1,2;", "1,2,3", "a,1", "1,2147483648"})
        QVERIFY2(boardListFromString(text, &ok).isEmpty() && !ok, text);
    Boards boards;
    for (const Board board : {Board{2, 1}, Board{1, 9}, Board{2, -1}, Board{1, 9}})
        boards.add(board);
    QCOMPARE(boardListToString(boards), QString("1,9;2,-1;2,1"));
}

QTEST_GUILESS_MAIN(FieldTest)
#include "tst_field.moc"
