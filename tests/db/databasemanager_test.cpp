#include "databasemanager.h"
#include "logconfig.h"
#include "logger.h"
#include "postgrestest.h"
#include "testsupport.h"

#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlTableModel>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using testsupport::ScratchDatabase;

namespace {

// A scratch database holding three items and the sequence "tickets" at 10,
// a manager logging at DEBUG to a
// file of its own, and a connection named "test" to the database.
class DatabaseTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(scratch.problem(), "");
        ASSERT_EQ(scratch.exec(u"create table items (id serial primary key, name text default 'unnamed', "
                               "price numeric default 0)"_s),
                  "");
        ASSERT_EQ(scratch.exec(u"insert into items (name, price) values ('tea', 1.50), ('coffee', 2.00), "
                               "('cake', 3.25)"_s),
                  "");
        ASSERT_EQ(scratch.exec(u"create sequence tickets minvalue 0 start 10"_s), "");
        db = connect(scratch, u"test"_s);
        ASSERT_NE(db, nullptr) << log();
        clearLog();
    }

    QSqlDatabase* connect(const ScratchDatabase& database, const QString& connectionName)
    {
        return manager.createConnection(u"QPSQL7"_s, database.name(), database.server().user, QString(),
                                        database.server().host, connectionName);
    }

    // The log so far, time stamps taken off.
    std::string log() const
    {
        return testsupport::withoutTimeStamps(testsupport::readBytes(logPath)).toStdString();
    }
    void clearLog() { logger.setType(u"OVERWRITE"_s); }

    ScratchDatabase scratch;
    QTemporaryDir dir;
    const QString logPath = dir.filePath(u"db.log"_s);
    const std::unique_ptr<ZTConfiguration> configuration =
        loggerConfiguration(u"DEBUG"_s, u"OVERWRITE"_s, dir.path(), u"db.log"_s);
    Logger logger{u"db"_s, configuration.get()};
    DatabaseManager manager{&logger};
    QSqlDatabase* db = nullptr;
};

// What one query reports when it succeeds.
std::string reported(const char* method, const char* sql, int rows)
{
    return std::string("DEBUG: Query called from method ") + method + ": " + sql + "\nDEBUG:     numRowsAffected: "
        + std::to_string(rows) + "\n";
}

struct OperationCase
{
    const char* name;
    std::function<QString(DatabaseManager&, QSqlDatabase*)> call;
    const char* result;
    std::string log;
};

void PrintTo(const OperationCase& c, std::ostream* os)
{
    *os << c.name;
}

QString yesNo(bool answer)
{
    return answer ? u"yes"_s : u"no"_s;
}

// executeSelectQuery3 with its values joined.
std::function<QString(DatabaseManager&, QSqlDatabase*)> firstColumns(const char* sql, int n)
{
    return [sql, n](DatabaseManager& m, QSqlDatabase* db) {
        return m.executeSelectQuery3(QString::fromLatin1(sql), n, db).join(u'|');
    };
}

const OperationCase operationCases[] = {
    {"getField",
     [](DatabaseManager& m, QSqlDatabase* db) { return m.getField(u"items"_s, u"name"_s, u"2"_s, db); }, "coffee",
     reported("DatabaseManager::getField(...)", "select name from items where id = 2", 1)},
    {"getField_no_row",
     [](DatabaseManager& m, QSqlDatabase* db) { return m.getField(u"items"_s, u"name"_s, u"9"_s, db); }, "",
     reported("DatabaseManager::getField(...)", "select name from items where id = 9", 0)},
    {"removeRecord",
     [](DatabaseManager& m, QSqlDatabase* db) { return QString::number(m.removeRecord(u"items"_s, u"2"_s, db)); },
     "1", reported("removeRecord", "delete from items where ID = 2", 1)},
    {"existRecord",
     [](DatabaseManager& m, QSqlDatabase* db) { return yesNo(m.existRecord(u"items"_s, u"3"_s, db)); }, "yes",
     reported("DatabaseManager::existRecord(...)", "select * from items where ID = 3", 1)},
    {"existRecord_not",
     [](DatabaseManager& m, QSqlDatabase* db) { return yesNo(m.existRecord(u"items"_s, u"4"_s, db)); }, "no",
     reported("DatabaseManager::existRecord(...)", "select * from items where ID = 4", 0)},
    {"numRecords",
     [](DatabaseManager& m, QSqlDatabase* db) {
         return QString::number(m.numRecords(u"items"_s, u"price > 1.75"_s, db));
     },
     "2", reported("DatabaseManager::existRecord(...)", "select count(*) from items where price > 1.75", 1)},
    {"executeSelectQuery",
     [](DatabaseManager& m, QSqlDatabase* db) {
         return m.executeSelectQuery(u"select name, price from items order by id desc"_s, db);
     },
     "cake", reported("executeSelectQuery(...)", "select name, price from items order by id desc", 3)},
    {"executeSelectQuery_null",
     [](DatabaseManager& m, QSqlDatabase* db) { return m.executeSelectQuery(u"select null"_s, db); }, "",
     reported("executeSelectQuery(...)", "select null", 1)},
    {"executeSelectQuery2",
     [](DatabaseManager& m, QSqlDatabase* db) {
         return m.executeSelectQuery2(u"select name, id from items order by id"_s, db).join(u'|');
     },
     "tea|coffee|cake", reported("executeSelectQuery2(...)", "select name, id from items order by id", 3)},
    {"executeSelectQuery3_two_of_three",
     firstColumns("select id, name, price from items order by id", 2),
     "1|tea|2|coffee|3|cake", reported("executeSelectQuery3(...)", "select id, name, price from items order by id", 3)},
    {"executeSelectQuery3_more_than_there_are",
     firstColumns("select id, name from items where id < 3 order by id", 5),
     "1|tea|2|coffee", reported("executeSelectQuery3(...)", "select id, name from items where id < 3 order by id", 2)},
    {"executeSelectQuery3_none",
     firstColumns("select id from items", 0),
     "", reported("executeSelectQuery3(...)", "select id from items", 3)},
    {"executeQuery",
     [](DatabaseManager& m, QSqlDatabase* db) {
         return QString::number(m.executeQuery(u"update items set price = 0 where id < 3"_s, db));
     },
     "2", reported("executeQuery(...)", "update items set price = 0 where id < 3", 2)},
    {"getLastId", [](DatabaseManager& m, QSqlDatabase* db) { return m.getLastId(u"items"_s, db); }, "3",
     reported("getLastId", "select max(ID) from items", 1)},
    {"newRecord", [](DatabaseManager& m, QSqlDatabase* db) { return m.newRecord(u"items"_s, db); }, "4",
     reported("newRecord", "insert into items values(default)", 1)
         + reported("getLastId", "select max(ID) from items", 1)},
    {"safeNewRecord", [](DatabaseManager& m, QSqlDatabase* db) { return m.safeNewRecord(u"items"_s, db); }, "4",
     "DEBUG: BEGIN\n\n\n" + reported("newRecord", "insert into items values(default)", 1)
         + reported("getLastId", "select max(ID) from items", 1) + "DEBUG: COMMIT\n\n\n"},
    {"sequenceValue", [](DatabaseManager& m, QSqlDatabase* db) { return m.sequenceValue(u"tickets"_s, db); }, "10",
     reported("executeSelectQuery(...)", "select last_value from tickets", 1)},
    {"setSequence", [](DatabaseManager& m, QSqlDatabase* db) { return m.setSequence(u"tickets"_s, 40, db); }, "40",
     reported("executeSelectQuery(...)", "SELECT setval('tickets', 40)", 1)},
    {"incrementSequence_answers_the_value_before",
     [](DatabaseManager& m, QSqlDatabase* db) { return m.incrementSequence(u"tickets"_s, 5, db); }, "10",
     reported("executeSelectQuery(...)", "select last_value from tickets", 1)
         + reported("executeSelectQuery(...)", "SELECT setval('tickets', 15)", 1)},
    {"decrementSequence",
     [](DatabaseManager& m, QSqlDatabase* db) { return m.decrementSequence(u"tickets"_s, 3, db); }, "10",
     reported("executeSelectQuery(...)", "select last_value from tickets", 1)
         + reported("executeSelectQuery(...)", "SELECT setval('tickets', 7)", 1)},
    // The checked forms: same reports, ids and values bound.
    {"checked_getField",
     [](DatabaseManager& m, QSqlDatabase* db) {
         return m.getField(SqlName(u"items"_s), SqlName(u"name"_s), 2, db);
     },
     "coffee", reported("DatabaseManager::getField(...)", "select name from items where id = ?", 1)},
    {"checked_removeRecord",
     [](DatabaseManager& m, QSqlDatabase* db) {
         return QString::number(m.removeRecord(SqlName(u"public.items"_s), 2, db));
     },
     "1", reported("removeRecord", "delete from public.items where ID = ?", 1)},
    {"checked_existRecord",
     [](DatabaseManager& m, QSqlDatabase* db) { return yesNo(m.existRecord(SqlName(u"items"_s), 4, db)); }, "no",
     reported("DatabaseManager::existRecord(...)", "select * from items where ID = ?", 0)},
    {"checked_incrementSequence",
     [](DatabaseManager& m, QSqlDatabase* db) { return m.incrementSequence(SqlName(u"tickets"_s), 5, db); }, "10",
     reported("executeSelectQuery(...)", "select last_value from tickets", 1)
         + reported("executeSelectQuery(...)", "SELECT setval(?, ?)", 1)},
    {"checked_safeNewRecord",
     [](DatabaseManager& m, QSqlDatabase* db) { return m.safeNewRecord(SqlName(u"items"_s), db); }, "4",
     "DEBUG: BEGIN\n\n\n" + reported("newRecord", "insert into items values(default)", 1)
         + reported("getLastId", "select max(ID) from items", 1) + "DEBUG: COMMIT\n\n\n"},
};

class Operation : public DatabaseTest, public testing::WithParamInterface<OperationCase>
{
};

TEST_P(Operation, RunsItsStatementAndReportsIt)
{
    EXPECT_EQ(GetParam().call(manager, db), QString::fromUtf8(GetParam().result));
    EXPECT_EQ(log(), GetParam().log);
}

INSTANTIATE_TEST_SUITE_P(DatabaseManager, Operation, testing::ValuesIn(operationCases));

struct InjectionCase
{
    const char* name;
    const char* payload;
    std::function<QString(DatabaseManager&, const SqlName&, QSqlDatabase*)> call;
    const char* result;
};

void PrintTo(const InjectionCase& c, std::ostream* os)
{
    *os << c.name;
}

const SqlName items(u"items"_s);

// Text that turns the pasting forms' statements into others: reading
// another table, deleting every row, dropping tables. The checked forms take
// ids as integers, so such text can only reach them as a name.
const InjectionCase injectionCases[] = {
    {"getField_union", "items where id = -1 union select pw from secret",
     [](DatabaseManager& m, const SqlName& name, QSqlDatabase* db) {
         return m.getField(name, SqlName(u"name"_s), 1, db);
     },
     ""},
    {"getField_field", "pw from secret --",
     [](DatabaseManager& m, const SqlName& name, QSqlDatabase* db) { return m.getField(items, name, 1, db); }, ""},
    {"removeRecord_every_row", "items --",
     [](DatabaseManager& m, const SqlName& name, QSqlDatabase* db) {
         return QString::number(m.removeRecord(name, 1, db));
     },
     "0"},
    {"existRecord", "items; drop table secret; select 1 from items",
     [](DatabaseManager& m, const SqlName& name, QSqlDatabase* db) { return yesNo(m.existRecord(name, 1, db)); },
     "no"},
    {"sequenceValue_drop", "tickets; drop table items",
     [](DatabaseManager& m, const SqlName& name, QSqlDatabase* db) { return m.sequenceValue(name, db); }, ""},
    {"setSequence_drop", "tickets', 1); drop table items; select setval('tickets",
     [](DatabaseManager& m, const SqlName& name, QSqlDatabase* db) { return m.setSequence(name, 1, db); }, ""},
    {"newRecord_drop", "items values(default); drop table secret; insert into items",
     [](DatabaseManager& m, const SqlName& name, QSqlDatabase* db) { return m.newRecord(name, db); }, "Error"},
    {"quoted_name", "\"items\"",
     [](DatabaseManager& m, const SqlName& name, QSqlDatabase* db) { return m.getLastId(name, db); }, "Error"},
};

class Injection : public DatabaseTest, public testing::WithParamInterface<InjectionCase>
{
};

TEST_P(Injection, IsRefusedAndReportedByTheCheckedForms)
{
    ASSERT_EQ(scratch.exec(u"create table secret (pw text); insert into secret values ('hunter2')"_s), "");
    const QString payload = QString::fromUtf8(GetParam().payload);
    EXPECT_EQ(GetParam().call(manager, SqlName(payload), db), QString::fromUtf8(GetParam().result));

    EXPECT_EQ(scratch.column(u"select id from items order by id"_s), QStringList({u"1"_s, u"2"_s, u"3"_s}));
    EXPECT_EQ(scratch.column(u"select pw from secret"_s), QStringList(u"hunter2"_s));
    EXPECT_EQ(scratch.column(u"select last_value from tickets"_s), QStringList(u"10"_s));
    const std::string text = log();
    EXPECT_NE(text.find("ERROR: Refused: \"" + payload.toStdString() + "\" is not a plain SQL name\n"),
              std::string::npos)
        << text;
}

INSTANTIATE_TEST_SUITE_P(DatabaseManager, Injection, testing::ValuesIn(injectionCases));

TEST_F(DatabaseTest, ChangesReachTheDatabase)
{
    manager.removeRecord(u"items"_s, u"1"_s, db);
    manager.executeQuery(u"update items set name = 'tart' where id = 3"_s, db);
    manager.safeNewRecord(u"items"_s, db);
    EXPECT_EQ(scratch.column(u"select id || ':' || name from items order by id"_s),
              QStringList({u"2:coffee"_s, u"3:tart"_s, u"4:unnamed"_s}));
}

TEST_F(DatabaseTest, FailingQueryIsReportedAtError)
{
    EXPECT_EQ(manager.executeQuery(u"insert into missing values (1)"_s, db), 0);

    // The database's text runs over several lines: the statement, a caret
    // under the fault, the SQL state.
    static const QRegularExpression expected(uR"(^DEBUG: Query called from method executeQuery\(\.\.\.\): insert into missing values \(1\)
DEBUG:     numRowsAffected: -1
ERROR: Error in the method executeQuery\(\.\.\.\), to query: insert into missing values \(1\)
ERROR: ERROR:  relation "missing" does not exist
LINE 1: insert into missing values \(1\)
 +\^
\(42P01\)
$)"_s);
    const QString text = QString::fromStdString(log());
    EXPECT_TRUE(expected.match(text).hasMatch()) << text.toStdString();
}

TEST_F(DatabaseTest, GetLastIdWithoutARowAnswersError)
{
    ASSERT_EQ(scratch.exec(u"delete from items"_s), "");
    // max() over no rows is one row holding NULL: empty text, no error.
    EXPECT_EQ(manager.getLastId(u"items"_s, db), u""_s);
    // Grouping an empty table gives no row at all.
    EXPECT_EQ(manager.getLastId(u"items group by name"_s, db), u"Error"_s);
    EXPECT_EQ(log(), reported("getLastId", "select max(ID) from items", 1)
                         + reported("getLastId", "select max(ID) from items group by name", 0)
                         + "ERROR: getLastId( items group by name ): select max(ID) from items group by name return "
                           "empty result\n");
}

TEST_F(DatabaseTest, ConnectionsAreOpenedAndReported)
{
    QSqlDatabase* other = manager.createConnection(u"QPSQL"_s, scratch.name(), scratch.server().user, QString(),
                                                   scratch.server().host, u"other"_s);
    ASSERT_NE(other, nullptr);
    EXPECT_NE(other, db);
    EXPECT_EQ(other->connectionName(), u"other"_s);
    EXPECT_EQ(manager.executeSelectQuery(u"select current_database()"_s, other), scratch.name());
    EXPECT_EQ(log(), "DEBUG: Connection With " + scratch.name().toStdString() + " DB established\n"
                         + reported("executeSelectQuery(...)", "select current_database()", 1));

    // Connecting a name anew keeps the object the callers hold.
    EXPECT_EQ(connect(scratch, u"other"_s), other);
    EXPECT_TRUE(other->isOpen());
}

TEST_F(DatabaseTest, ConnectionFailuresAnswerNull)
{
    EXPECT_EQ(manager.createConnection(u"QNOSUCH"_s, scratch.name(), scratch.server().user, QString(),
                                       scratch.server().host, u"bad"_s),
              nullptr);
    EXPECT_EQ(manager.createConnection(u"QPSQL7"_s, u"zt_no_such_database"_s, scratch.server().user, QString(),
                                       scratch.server().host, u"bad"_s),
              nullptr);
    EXPECT_FALSE(QSqlDatabase::contains(u"bad"_s));

    static const QRegularExpression expected(uR"(^ERROR: Failed to connect to driver
ERROR: Failed to open database: QPSQL: Unable to connect
ERROR: connection to server on socket ".*" failed: FATAL:  database "zt_no_such_database" does not exist
\s*$)"_s);
    const QString text = QString::fromStdString(log());
    EXPECT_TRUE(expected.match(text).hasMatch()) << text.toStdString();
}

TEST_F(DatabaseTest, ClosedConnectionIsReportedNotRun)
{
    db->close();
    EXPECT_EQ(manager.executeQuery(u"delete from items"_s, db), 0);
    EXPECT_EQ(log(), "DEBUG: Query called from method executeQuery(...): delete from items\n"
                     "DEBUG:     numRowsAffected: -1\n"
                     "ERROR: Error in the method executeQuery(...), to query: delete from items\n"
                     "ERROR: Database not open\n");
    EXPECT_EQ(scratch.column(u"select count(*) from items"_s), QStringList(u"3"_s));
}

TEST_F(DatabaseTest, WithoutALoggerNothingIsLogged)
{
    DatabaseManager quiet(nullptr);
    QSqlDatabase* connection = quiet.createConnection(u"QPSQL7"_s, scratch.name(), scratch.server().user, QString(),
                                                      scratch.server().host, u"quiet"_s);
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(quiet.getField(u"items"_s, u"name"_s, u"1"_s, connection), u"tea"_s);
    EXPECT_EQ(quiet.executeQuery(u"no such statement"_s, connection), 0);
    EXPECT_EQ(quiet.getLastId(u"missing"_s, connection), u"Error"_s);
    EXPECT_EQ(log(), "");
}

TEST_F(DatabaseTest, CursorErrorsAreReported)
{
    QSqlTableModel missing(nullptr, *db);
    missing.setTable(u"missing"_s);
    missing.select();
    QSqlTableModel items(nullptr, *db);
    items.setTable(u"items"_s);
    ASSERT_TRUE(items.select());

    manager.showCursorError(u"Items::load"_s, &items);
    manager.showCursorError(u"Items::load"_s, nullptr);
    EXPECT_EQ(log(), "");
    manager.showCursorError(u"Items::load"_s, &missing);
    const QString text = QString::fromStdString(log());
    EXPECT_TRUE(text.startsWith(u"ERROR: Error in the method Items::load, to cursor: missing\nERROR: "_s))
        << text.toStdString();
}

// A second database whose sequence "tickets" the default connection reads.
class SequenceTest : public DatabaseTest
{
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        ASSERT_EQ(other.problem(), "");
        ASSERT_EQ(other.exec(u"create sequence tickets minvalue 0 start 10"_s), "");
        ASSERT_NE(connect(other, QString()), nullptr);
        clearLog();
    }

    ScratchDatabase other{u"default"_s};
};

TEST_F(SequenceTest, DecrementIfPositiveReadsTheDefaultConnection)
{
    // Both at 10: down to exactly 0 is allowed, below is not.
    EXPECT_TRUE(manager.decrementSequenceIfPositive(u"tickets"_s, 10));
    EXPECT_EQ(other.column(u"select last_value from tickets"_s), QStringList(u"0"_s));
    EXPECT_FALSE(manager.decrementSequenceIfPositive(u"tickets"_s, 1));
    EXPECT_EQ(other.column(u"select last_value from tickets"_s), QStringList(u"0"_s));

    // The value is read on the default connection, the change made on the
    // given one: default at 0, so nothing happens to "test".
    EXPECT_FALSE(manager.decrementSequenceIfPositive(u"tickets"_s, 1, db));
    EXPECT_EQ(scratch.column(u"select last_value from tickets"_s), QStringList(u"10"_s));
    ASSERT_EQ(other.exec(u"select setval('tickets', 3)"_s), "");
    EXPECT_TRUE(manager.decrementSequenceIfPositive(u"tickets"_s, 3, db));
    EXPECT_EQ(scratch.column(u"select last_value from tickets"_s), QStringList(u"7"_s));
    EXPECT_EQ(other.column(u"select last_value from tickets"_s), QStringList(u"3"_s));
}

TEST_F(SequenceTest, BadSequenceValueCountsAsZero)
{
    EXPECT_EQ(manager.incrementSequence(u"missing"_s, 4, db), u""_s);
    const QString text = QString::fromStdString(log());
    EXPECT_TRUE(text.contains(u"DEBUG: Query called from method executeSelectQuery(...): SELECT setval('missing', 4)\n"_s))
        << text.toStdString();
}

TEST_F(SequenceTest, TransactionsOnAConnectionUseItsOwnCalls)
{
    manager.begin(db);
    manager.newRecord(u"items"_s, db);
    manager.executeQuery(u"delete from items where id = 1"_s, db);
    manager.rollback(db);
    EXPECT_EQ(scratch.column(u"select id from items order by id"_s), QStringList({u"1"_s, u"2"_s, u"3"_s}));

    manager.begin(db);
    manager.removeRecord(u"items"_s, u"2"_s, db);
    manager.commit(db);
    EXPECT_EQ(scratch.column(u"select id from items order by id"_s), QStringList({u"1"_s, u"3"_s}));

    const std::string text = log();
    EXPECT_EQ(text.find("method executeQuery(...): BEGIN"), std::string::npos) << text;
    EXPECT_TRUE(text.starts_with("DEBUG: BEGIN\n\n\n")) << text;
    EXPECT_TRUE(text.ends_with(reported("removeRecord", "delete from items where ID = 2", 1) + "DEBUG: COMMIT\n\n\n"))
        << text;
}

TEST_F(SequenceTest, CheckedCommitSaysWhetherTheTransactionWasKept)
{
    ASSERT_EQ(other.exec(u"create table items (id serial primary key, name text default '')"_s), "");
    const std::pair<QSqlDatabase*, ScratchDatabase*> connections[] = {{db, &scratch}, {nullptr, &other}};
    for (const auto& [connection, database] : connections) {
        const int rows = database->column(u"select count(*) from items"_s).value(0).toInt();
        manager.begin(connection);
        manager.newRecord(items, connection);
        EXPECT_TRUE(manager.commitTransaction(connection));
        manager.begin(connection);
        manager.removeRecord(items, 1, connection);
        EXPECT_TRUE(manager.rollbackTransaction(connection));
        // The failed statement aborts the transaction; the server then
        // rolls it back at its COMMIT.
        manager.begin(connection);
        manager.removeRecord(items, 1, connection);
        manager.executeQuery(u"insert into missing values (1)"_s, connection);
        EXPECT_FALSE(manager.commitTransaction(connection));
        EXPECT_EQ(database->column(u"select count(*) from items"_s), QStringList(QString::number(rows + 1)));
    }
    EXPECT_NE(log().find("ERROR: Error in the method COMMIT, to connection: test\n"), std::string::npos) << log();
}

TEST_F(SequenceTest, TransactionsOnTheDefaultConnectionSendStatements)
{
    ASSERT_EQ(other.exec(u"create table notes (id serial primary key, body text default '')"_s), "");
    manager.begin();
    EXPECT_EQ(manager.newRecord(u"notes"_s), u"1"_s);
    manager.rollback();
    EXPECT_EQ(other.column(u"select count(*) from notes"_s), QStringList(u"0"_s));

    manager.begin();
    manager.newRecord(u"notes"_s);
    manager.commit();
    EXPECT_EQ(other.column(u"select count(*) from notes"_s), QStringList(u"1"_s));

    const std::string text = log();
    EXPECT_TRUE(text.starts_with(reported("executeQuery(...)", "BEGIN", 0) + "DEBUG: BEGIN\n\n\n")) << text;
    EXPECT_NE(text.find(reported("executeQuery(...)", "ROLLBACK", 0) + "DEBUG: ROLLBACK\n\n\n"), std::string::npos)
        << text;
    EXPECT_TRUE(text.ends_with(reported("executeQuery(...)", "COMMIT", 0) + "DEBUG: COMMIT\n\n\n")) << text;
}

} // namespace
