#include "databasemanager.h"

#include "emptytext.h"
#include "hlogmanager.h"
#include "syncsingleton.h"

#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QSqlTableModel>
#include <QVariant>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <set>

using namespace Qt::StringLiterals;

namespace {

// The suite still names the PostgreSQL driver as it was called in Qt 3.
QString currentDriverName(const QString& driver)
{
    return driver == "QPSQL7"_L1 ? u"QPSQL"_s : driver;
}

QString defaultConnectionName()
{
    return QString::fromLatin1(QSqlDatabase::defaultConnection);
}

QSqlDatabase connectionOrDefault(QSqlDatabase* db)
{
    return db ? *db : QSqlDatabase::database();
}

// A missing value and SQL NULL both read as empty text (a NULL number
// would otherwise read as "0").
QString textOf(const QVariant& value)
{
    const QString text = value.isNull() ? QString() : value.toString();
    return text.isNull() ? emptyText() : text;
}

// Why a statement failed, as the database put it; some failures (no
// driver, a closed connection) come from the driver alone.
QString reasonOf(const QSqlError& error)
{
    return error.databaseText().isEmpty() ? error.driverText() : error.databaseText();
}

// Drops a connection from Qt's registry after our copy of it is gone, so
// that Qt does not warn that it is still in use. An invalid object has
// nothing registered: it was forgotten already, or never connected.
void forget(QSqlDatabase& database, const QString& name)
{
    if (!database.isValid())
        return;
    database.close();
    database = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

// The managers alive, for the exit handler. Never destroyed, so that a
// manager destroyed late in the exit (the singleton's) can still leave it.
std::mutex liveManagersMutex;
std::set<DatabaseManager*>& liveManagers()
{
    static auto* const managers = new std::set<DatabaseManager*>;
    return *managers;
}

// Why a checked form refused a name, reported as a statement error would be.
QSqlError refusal(const SqlName& name)
{
    return QSqlError(u"Refused: \"%1\" is not a plain SQL name"_s.arg(name.text), QString(),
                     QSqlError::StatementError);
}

} // namespace

bool SqlName::isPlain() const
{
    static const QRegularExpression plain(uR"(^[A-Za-z_][A-Za-z0-9_$]*(\.[A-Za-z_][A-Za-z0-9_$]*)?$)"_s);
    return plain.match(text).hasMatch();
}

DatabaseManager::DatabaseManager()
    : DatabaseManager(SyncSingleton<HLogManager>::instance()->getLog(QString()))
{
}

DatabaseManager::DatabaseManager(Logger* logger)
    : logger(logger)
{
    const std::lock_guard lock(liveManagersMutex);
    liveManagers().insert(this);
}

DatabaseManager::~DatabaseManager()
{
    {
        const std::lock_guard lock(liveManagersMutex);
        liveManagers().erase(this);
    }
    releaseConnections();
}

void DatabaseManager::releaseConnections()
{
    for (auto& [name, database] : connections)
        forget(*database, name);
}

// Qt tears its connection registry down at process exit, before the
// singleton's destroyer deletes the manager. Exit handlers run in reverse
// order of registration, so one registered after the registry came to be
// runs first and can still release the connections properly.
void DatabaseManager::releaseAllAtExit()
{
    static std::once_flag registered;
    std::call_once(registered, [] {
        std::atexit([] {
            const std::lock_guard lock(liveManagersMutex);
            for (DatabaseManager* manager : liveManagers())
                manager->releaseConnections();
        });
    });
}

void DatabaseManager::log(Logger::Level level, const QString& text)
{
    if (logger)
        logger->write(level, text);
}

QSqlDatabase* DatabaseManager::createConnection(const QString& driver, const QString& dbname,
                                                const QString& username, const QString& password,
                                                const QString& hostname, const QString& connectionName)
{
    const QString name = connectionName.isEmpty() ? defaultConnectionName() : connectionName;
    std::unique_ptr<QSqlDatabase>& database = connections[name];
    if (database)
        forget(*database, name);
    else
        database = std::make_unique<QSqlDatabase>();

    // Asked first so that Qt does not list its drivers on standard error.
    const QString driverName = currentDriverName(driver);
    if (QSqlDatabase::isDriverAvailable(driverName)) {
        if (QSqlDatabase::contains(name))
            QSqlDatabase::removeDatabase(name); // someone else's: ours replaces it
        *database = QSqlDatabase::addDatabase(driverName, name);
        releaseAllAtExit();
    }
    if (!database->isValid()) {
        log(Logger::ERROR, u"Failed to connect to driver"_s);
        forget(*database, name);
        return nullptr;
    }

    database->setDatabaseName(dbname);
    database->setUserName(username);
    database->setPassword(password);
    database->setHostName(hostname);
    if (!database->open()) {
        const QSqlError error = database->lastError();
        log(Logger::ERROR, "Failed to open database: "_L1 + error.driverText());
        log(Logger::ERROR, error.databaseText());
        forget(*database, name);
        return nullptr;
    }
    log(Logger::DEBUG, "Connection With "_L1 + dbname + " DB established"_L1);
    return database.get();
}

QSqlQuery DatabaseManager::run(const QString& method, const QString& sql, QSqlDatabase* db,
                               const QVariantList& bound)
{
    const QSqlDatabase connection = connectionOrDefault(db);
    QSqlQuery query(connection);
    // Qt would refuse these with a warning of its own and no error on the
    // query; they are reported like any other failure instead.
    if (!connection.isOpen() || sql.trimmed().isEmpty()) {
        const QString reason = !connection.isValid() ? u"Driver not loaded"_s
            : !connection.isOpen()                  ? u"Database not open"_s
                                                    : u"Empty query"_s;
        report(method, sql, -1, QSqlError(reason, QString(), QSqlError::ConnectionError));
        return query;
    }
    if (bound.isEmpty()) {
        query.exec(sql);
    } else if (query.prepare(sql)) {
        for (const QVariant& value : bound)
            query.addBindValue(value);
        query.exec();
    }
    showQueryError(method, query);
    return query;
}

void DatabaseManager::showQueryError(const QString& method, const QSqlQuery& query)
{
    report(method, query.lastQuery(), query.numRowsAffected(), query.lastError());
}

void DatabaseManager::report(const QString& method, const QString& sql, int rowsAffected, const QSqlError& error)
{
    log(Logger::DEBUG, "Query called from method "_L1 + method + ": "_L1 + sql);
    log(Logger::DEBUG, "    numRowsAffected: "_L1 + QString::number(rowsAffected));
    if (error.type() != QSqlError::NoError) {
        log(Logger::ERROR, "Error in the method "_L1 + method + ", to query: "_L1 + sql);
        log(Logger::ERROR, reasonOf(error));
    }
}

void DatabaseManager::showCursorError(const QString& method, const QSqlTableModel* cursor)
{
    if (!cursor || cursor->lastError().type() == QSqlError::NoError)
        return;
    log(Logger::ERROR, "Error in the method "_L1 + method + ", to cursor: "_L1 + cursor->tableName());
    log(Logger::ERROR, reasonOf(cursor->lastError()));
}

QString DatabaseManager::getField(const QString& table, const QString& field, const QString& id, QSqlDatabase* db)
{
    QSqlQuery query = run(u"DatabaseManager::getField(...)"_s,
                          "select "_L1 + field + " from "_L1 + table + " where id = "_L1 + id, db);
    return query.next() ? textOf(query.value(0)) : emptyText();
}

int DatabaseManager::removeRecord(const QString& table, const QString& id, QSqlDatabase* db)
{
    const QSqlQuery query = run(u"removeRecord"_s, "delete from "_L1 + table + " where ID = "_L1 + id, db);
    return std::max(query.numRowsAffected(), 0);
}

bool DatabaseManager::existRecord(const QString& table, const QString& id, QSqlDatabase* db)
{
    QSqlQuery query = run(u"DatabaseManager::existRecord(...)"_s,
                          "select * from "_L1 + table + " where ID = "_L1 + id, db);
    return query.next();
}

int DatabaseManager::numRecords(const QString& table, const QString& condition, QSqlDatabase* db)
{
    // Reported under existRecord's name, as the suite's logs always showed it.
    QSqlQuery query = run(u"DatabaseManager::existRecord(...)"_s,
                          "select count(*) from "_L1 + table + " where "_L1 + condition, db);
    return query.next() ? query.value(0).toInt() : 0;
}

bool DatabaseManager::namesArePlain(const QString& method, const QString& sql,
                                    std::initializer_list<const SqlName*> names)
{
    for (const SqlName* name : names) {
        if (!name->isPlain()) {
            report(method, sql, -1, refusal(*name));
            return false;
        }
    }
    return true;
}

QString DatabaseManager::getField(const SqlName& table, const SqlName& field, qint64 id, QSqlDatabase* db)
{
    const QString method = u"DatabaseManager::getField(...)"_s;
    const QString sql = "select "_L1 + field.text + " from "_L1 + table.text + " where id = ?"_L1;
    if (!namesArePlain(method, sql, {&table, &field}))
        return emptyText();
    QSqlQuery query = run(method, sql, db, {id});
    return query.next() ? textOf(query.value(0)) : emptyText();
}

int DatabaseManager::removeRecord(const SqlName& table, qint64 id, QSqlDatabase* db)
{
    const QString sql = "delete from "_L1 + table.text + " where ID = ?"_L1;
    if (!namesArePlain(u"removeRecord"_s, sql, {&table}))
        return 0;
    const QSqlQuery query = run(u"removeRecord"_s, sql, db, {id});
    return std::max(query.numRowsAffected(), 0);
}

bool DatabaseManager::existRecord(const SqlName& table, qint64 id, QSqlDatabase* db)
{
    const QString method = u"DatabaseManager::existRecord(...)"_s;
    const QString sql = "select * from "_L1 + table.text + " where ID = ?"_L1;
    if (!namesArePlain(method, sql, {&table}))
        return false;
    QSqlQuery query = run(method, sql, db, {id});
    return query.next();
}

QString DatabaseManager::executeSelectQuery(const QString& query, QSqlDatabase* db)
{
    QSqlQuery result = run(u"executeSelectQuery(...)"_s, query, db);
    return result.next() ? textOf(result.value(0)) : emptyText();
}

QStringList DatabaseManager::executeSelectQuery2(const QString& query, QSqlDatabase* db)
{
    QSqlQuery result = run(u"executeSelectQuery2(...)"_s, query, db);
    QStringList values;
    while (result.next())
        values.append(textOf(result.value(0)));
    return values;
}

QStringList DatabaseManager::executeSelectQuery3(const QString& query, int n, QSqlDatabase* db)
{
    QSqlQuery result = run(u"executeSelectQuery3(...)"_s, query, db);
    const int columns = std::min(n, result.record().count());
    QStringList values;
    while (result.next()) {
        for (int column = 0; column < columns; ++column)
            values.append(textOf(result.value(column)));
    }
    return values;
}

int DatabaseManager::executeQuery(const QString& query, QSqlDatabase* db)
{
    const QSqlQuery result = run(u"executeQuery(...)"_s, query, db);
    return std::max(result.numRowsAffected(), 0);
}

QString DatabaseManager::sequenceValue(const QString& sequence, QSqlDatabase* db)
{
    return executeSelectQuery("select last_value from "_L1 + sequence, db);
}

QString DatabaseManager::setSequence(const QString& sequence, int value, QSqlDatabase* db)
{
    return executeSelectQuery("SELECT setval('"_L1 + sequence + "', "_L1 + QString::number(value) + u')', db);
}

QString DatabaseManager::sequenceValue(const SqlName& sequence, QSqlDatabase* db)
{
    const QString method = u"executeSelectQuery(...)"_s;
    const QString sql = "select last_value from "_L1 + sequence.text;
    if (!namesArePlain(method, sql, {&sequence}))
        return emptyText();
    QSqlQuery query = run(method, sql, db);
    return query.next() ? textOf(query.value(0)) : emptyText();
}

QString DatabaseManager::setSequence(const SqlName& sequence, qint64 value, QSqlDatabase* db)
{
    const QString method = u"executeSelectQuery(...)"_s;
    const QString sql = u"SELECT setval(?, ?)"_s;
    if (!namesArePlain(method, sql, {&sequence}))
        return emptyText();
    QSqlQuery query = run(method, sql, db, {sequence.text, value});
    return query.next() ? textOf(query.value(0)) : emptyText();
}

template<typename Name>
QString DatabaseManager::moveSequence(const Name& sequence, int n, QSqlDatabase* db)
{
    const QString before = sequenceValue(sequence, db);
    setSequence(sequence, before.toInt() + n, db);
    return before;
}

QString DatabaseManager::incrementSequence(const QString& sequence, int n, QSqlDatabase* db)
{
    return moveSequence(sequence, n, db);
}

QString DatabaseManager::decrementSequence(const QString& sequence, int n, QSqlDatabase* db)
{
    return moveSequence(sequence, -n, db);
}

QString DatabaseManager::incrementSequence(const SqlName& sequence, int n, QSqlDatabase* db)
{
    return moveSequence(sequence, n, db);
}

QString DatabaseManager::decrementSequence(const SqlName& sequence, int n, QSqlDatabase* db)
{
    return moveSequence(sequence, -n, db);
}

bool DatabaseManager::decrementSequenceIfPositive(const QString& sequence, int n, QSqlDatabase* db)
{
    if (sequenceValue(sequence).toInt() < n)
        return false;
    incrementSequence(sequence, -n, db);
    return true;
}

void DatabaseManager::transactionStep(const QString& statement, TransactionCall call, QSqlDatabase* db)
{
    if (!db) {
        executeQuery(statement);
    } else if (!(db->*call)()) {
        reportTransactionFailure(statement, *db);
    }
    log(Logger::DEBUG, statement + "\n\n"_L1);
}

void DatabaseManager::reportTransactionFailure(const QString& statement, const QSqlDatabase& db)
{
    log(Logger::ERROR, "Error in the method "_L1 + statement + ", to connection: "_L1 + db.connectionName());
    log(Logger::ERROR, reasonOf(db.lastError()));
}

// The driver's own call reads the server's answer: a COMMIT of a failed
// transaction succeeds as a statement but answers "ROLLBACK".
bool DatabaseManager::transactionEnd(const QString& statement, TransactionCall call, QSqlDatabase* db)
{
    QSqlDatabase connection = connectionOrDefault(db);
    const bool done = (connection.*call)();
    if (!done)
        reportTransactionFailure(statement, connection);
    log(Logger::DEBUG, statement + "\n\n"_L1);
    return done;
}

bool DatabaseManager::commitTransaction(QSqlDatabase* db)
{
    return transactionEnd(u"COMMIT"_s, &QSqlDatabase::commit, db);
}

bool DatabaseManager::rollbackTransaction(QSqlDatabase* db)
{
    return transactionEnd(u"ROLLBACK"_s, &QSqlDatabase::rollback, db);
}

void DatabaseManager::begin(QSqlDatabase* db)
{
    transactionStep(u"BEGIN"_s, &QSqlDatabase::transaction, db);
}

void DatabaseManager::commit(QSqlDatabase* db)
{
    transactionStep(u"COMMIT"_s, &QSqlDatabase::commit, db);
}

void DatabaseManager::rollback(QSqlDatabase* db)
{
    transactionStep(u"ROLLBACK"_s, &QSqlDatabase::rollback, db);
}

QString DatabaseManager::getLastId(const QString& table, QSqlDatabase* db)
{
    const QString sql = "select max(ID) from "_L1 + table;
    QSqlQuery query = run(u"getLastId"_s, sql, db);
    if (query.next())
        return textOf(query.value(0));
    log(Logger::ERROR, "getLastId( "_L1 + table + " ): "_L1 + sql + " return empty result"_L1);
    return u"Error"_s;
}

void DatabaseManager::insertDefaultRow(const QString& table, QSqlDatabase* db)
{
    run(u"newRecord"_s, "insert into "_L1 + table + " values(default)"_L1, db);
}

QString DatabaseManager::newRecord(const QString& table, QSqlDatabase* db)
{
    insertDefaultRow(table, db);
    return getLastId(table, db);
}

QString DatabaseManager::safeNewRecord(const QString& table, QSqlDatabase* db)
{
    begin(db);
    insertDefaultRow(table, db);
    const QString id = getLastId(table, db);
    commit(db);
    return id;
}

QString DatabaseManager::getLastId(const SqlName& table, QSqlDatabase* db)
{
    if (!namesArePlain(u"getLastId"_s, "select max(ID) from "_L1 + table.text, {&table}))
        return u"Error"_s;
    return getLastId(table.text, db);
}

QString DatabaseManager::newRecord(const SqlName& table, QSqlDatabase* db)
{
    if (!namesArePlain(u"newRecord"_s, "insert into "_L1 + table.text + " values(default)"_L1, {&table}))
        return u"Error"_s;
    return newRecord(table.text, db);
}

QString DatabaseManager::safeNewRecord(const SqlName& table, QSqlDatabase* db)
{
    if (!namesArePlain(u"newRecord"_s, "insert into "_L1 + table.text + " values(default)"_L1, {&table}))
        return u"Error"_s;
    begin(db);
    insertDefaultRow(table.text, db);
    const QString id = getLastId(table.text, db);
    return commitTransaction(db) ? id : u"Error"_s;
}
