// Qt Test with rows of named fields for data-driven tests:
//
//     struct Cut {
//         QString file;
//         int missing = 0;   // bytes at the end
//         QByteArray said{}; // on standard error; a field with an initializer may be left out
//     };
//     void cut_data()
//     {
//         const Rows<Cut> row;
//         row("whole") = {"plain"};
//         row("last scan") = {"plain", 1, "read: 1"}; // fields in their order, where that reads well,
//         Cut &masses = row("all masses");            // or by their names
//         masses.file = "plain";
//         masses.missing = 120;
//     }
//     void cut()
//     {
//         const Cut &row = Rows<Cut>::current();
//         QCOMPARE(run(row.file, row.missing).err, row.said);
//     }
#ifndef ROWS_H
#define ROWS_H

#include <QtTest>

#include <deque>

template <class Row> class Rows
{
public:
    // Begins the table of the test whose data function is running.
    Rows()
    {
        rows.clear();
        QTest::addColumn<int>("place");
    }

    // Adds a row, to be filled in.
    Row &operator()(const QByteArray &name) const
    {
        QTest::newRow(name.constData()) << int(rows.size());
        return rows.emplace_back();
    }

    // The row that the running test is called for.
    static const Row &current()
    {
        QFETCH(int, place);
        return rows.at(std::size_t(place));
    }

private:
    // Qt Test fills the table of one test and runs its rows before it comes to the next one.
    static inline std::deque<Row> rows; // its elements stay where they are
};

#endif // ROWS_H
