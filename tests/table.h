// Qt Test with tables for data-driven tests: a row a line, the columns told apart by their order.
#ifndef TABLE_H
#define TABLE_H

#include <QtTest>

#include <cstddef>
#include <tuple>
#include <utility>

template <class... Columns> class Table
{
public:
    Table() { addColumns(std::index_sequence_for<Columns...>()); }

    // Adds a row.
    void operator()(const QByteArray &name, const Columns &...values) const
    {
        (QTest::newRow(name.constData()) << ... << values);
    }

    // The columns of the row whose test is running.
    static std::tuple<Columns...> row() { return valuesOf(std::index_sequence_for<Columns...>()); }

private:
    template <std::size_t... places> void addColumns(std::index_sequence<places...>)
    {
        (QTest::addColumn<Columns>(names[places]), ...);
    }

    template <std::size_t... places> static std::tuple<Columns...> valuesOf(std::index_sequence<places...>)
    {
        return {*static_cast<Columns *>(QTest::qData(names[places], qMetaTypeId<Columns>()))...};
    }

    static constexpr const char *names[] = {"1", "2", "3", "4", "5", "6"};
};

#endif // TABLE_H
