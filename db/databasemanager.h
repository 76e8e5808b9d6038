#pragma once

#include "logger.h"

#include <QString>
#include <QStringList>
#include <QVariantList>

#include <initializer_list>
#include <map>
#include <memory>
#include <utility>

class QSqlDatabase;
class QSqlError;
class QSqlQuery;
class QSqlTableModel;

// A table, field or sequence name for the checked forms of DatabaseManager:
// a plain identifier or schema.identifier. The forms refuse anything else.
struct SqlName
{
    explicit SqlName(QString text)
        : text(std::move(text))
    {
    }
    // Letters, digits, '_' and '$', not starting with a digit or '$';
    // optionally two such words joined by one '.'.
    bool isPlain() const;

    QString text;
};

// The suite's SQL helpers, reached through SyncSingleton<DatabaseManager>.
// Every statement and every failure is reported to the log. A connection
// argument of null means Qt's default connection.
//
// Forms taking names, ids or conditions as QString paste them into the SQL.
// Never pass those forms text that came from a request or a user.
// New code uses the checked forms beside them: names as SqlName, refused
// (reported like a failed statement) unless plain, and ids as integers bound
// as parameters.
class DatabaseManager
{
public:
    // Logs through the log manager's default Logger; when none was set,
    // nothing is logged.
    DatabaseManager();
    // Logs through `logger` (may be null), which must outlive the manager.
    explicit DatabaseManager(Logger* logger);
    // Closes and removes the connections it created.
    ~DatabaseManager();

    DatabaseManager(const DatabaseManager&) = delete;
    DatabaseManager& operator=(const DatabaseManager&) = delete;

    // Opens a connection under `connectionName` (the default connection when
    // empty). "QPSQL7" is accepted as the former name of "QPSQL". The host
    // name may be a socket directory; the port is libpq's (PGPORT, or its
    // built-in default). The manager owns the connection until it is
    // destroyed or the name is connected anew; null when it failed.
    QSqlDatabase* createConnection(const QString& driver, const QString& dbname, const QString& username,
                                   const QString& password, const QString& hostname,
                                   const QString& connectionName);

    QString getField(const QString& table, const QString& field, const QString& id, QSqlDatabase* db = nullptr);
    int removeRecord(const QString& table, const QString& id, QSqlDatabase* db = nullptr);
    bool existRecord(const QString& table, const QString& id, QSqlDatabase* db = nullptr);
    QString getField(const SqlName& table, const SqlName& field, qint64 id, QSqlDatabase* db = nullptr);
    int removeRecord(const SqlName& table, qint64 id, QSqlDatabase* db = nullptr);
    bool existRecord(const SqlName& table, qint64 id, QSqlDatabase* db = nullptr);
    // `condition` is SQL: it has no checked form.
    int numRecords(const QString& table, const QString& condition, QSqlDatabase* db = nullptr);

    // The first column of the first row, or empty text.
    QString executeSelectQuery(const QString& query, QSqlDatabase* db = nullptr);
    // The first column of every row.
    QStringList executeSelectQuery2(const QString& query, QSqlDatabase* db = nullptr);
    // Row by row, the first `n` columns of every row (all of them when a row
    // has fewer).
    QStringList executeSelectQuery3(const QString& query, int n, QSqlDatabase* db = nullptr);
    // The number of rows affected, 0 when the statement failed.
    int executeQuery(const QString& query, QSqlDatabase* db = nullptr);

    QString sequenceValue(const QString& sequence, QSqlDatabase* db = nullptr);
    QString setSequence(const QString& sequence, int value, QSqlDatabase* db = nullptr);
    // Both answer the value before the change.
    QString incrementSequence(const QString& sequence, int n, QSqlDatabase* db = nullptr);
    QString decrementSequence(const QString& sequence, int n, QSqlDatabase* db = nullptr);
    // Decrements only when the value is at least `n`. The value is read on
    // the default connection whatever `db` is, as the suite always did.
    bool decrementSequenceIfPositive(const QString& sequence, int n, QSqlDatabase* db = nullptr);
    QString sequenceValue(const SqlName& sequence, QSqlDatabase* db = nullptr);
    QString setSequence(const SqlName& sequence, qint64 value, QSqlDatabase* db = nullptr);
    QString incrementSequence(const SqlName& sequence, int n, QSqlDatabase* db = nullptr);
    QString decrementSequence(const SqlName& sequence, int n, QSqlDatabase* db = nullptr);

    // With a null connection these send the statements "BEGIN", "COMMIT" and
    // "ROLLBACK" on the default connection; otherwise they use the
    // connection's own transaction calls.
    void begin(QSqlDatabase* db = nullptr);
    void commit(QSqlDatabase* db = nullptr);
    void rollback(QSqlDatabase* db = nullptr);
    // Whether the transaction was committed (or rolled back). A transaction
    // in which a statement failed is rolled back by the server at its
    // COMMIT, and commitTransaction answers false. Both use the connection's
    // own calls (the default connection's when null) and report a failure
    // as commit() and rollback() do with a connection.
    bool commitTransaction(QSqlDatabase* db = nullptr);
    bool rollbackTransaction(QSqlDatabase* db = nullptr);

    // The highest ID of the table; "Error" when the query gave no row.
    QString getLastId(const QString& table, QSqlDatabase* db = nullptr);
    // Inserts a row of default values and answers its ID.
    QString newRecord(const QString& table, QSqlDatabase* db = nullptr);
    // newRecord inside a transaction.
    QString safeNewRecord(const QString& table, QSqlDatabase* db = nullptr);
    QString getLastId(const SqlName& table, QSqlDatabase* db = nullptr);
    QString newRecord(const SqlName& table, QSqlDatabase* db = nullptr);
    // "Error" also when the commit failed.
    QString safeNewRecord(const SqlName& table, QSqlDatabase* db = nullptr);

    // Reports a query that ran: its text and affected rows at DEBUG, and
    // its error at ERROR when it failed.
    void showQueryError(const QString& method, const QSqlQuery& query);
    // Reports the last error of a table model, if it has one.
    void showCursorError(const QString& method, const QSqlTableModel* cursor);

private:
    using TransactionCall = bool (QSqlDatabase::*)();

    QSqlQuery run(const QString& method, const QString& sql, QSqlDatabase* db, const QVariantList& bound = {});
    // Whether all `names` are plain; if not, reports `sql` (the statement
    // they would have made) as refused.
    bool namesArePlain(const QString& method, const QString& sql, std::initializer_list<const SqlName*> names);
    template<typename Name>
    QString moveSequence(const Name& sequence, int n, QSqlDatabase* db);
    bool transactionEnd(const QString& statement, TransactionCall call, QSqlDatabase* db);
    void report(const QString& method, const QString& sql, int rowsAffected, const QSqlError& error);
    void transactionStep(const QString& statement, TransactionCall call, QSqlDatabase* db);
    void reportTransactionFailure(const QString& statement, const QSqlDatabase& db);
    void insertDefaultRow(const QString& table, QSqlDatabase* db);
    void log(Logger::Level level, const QString& text);
    void releaseConnections();
    static void releaseAllAtExit();

    Logger* logger;
    // One object per connection name; a pointer handed out stays valid as
    // long as the manager lives.
    std::map<QString, std::unique_ptr<QSqlDatabase>> connections;
};
