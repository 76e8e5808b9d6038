#pragma once

#include "pagedcopy.h"

#include <QString>

class QComboBox;
class QSqlDatabase;
class ZTConfiguration;

// The suite's static helper functions. Those that read settings take them
// from `configuration` when one is given, otherwise from the user's
// configuration (the process singleton).
class HLibrary
{
public:
    HLibrary() = delete;

    static QString appData();
    static QString programFiles();
    // The user's home folder.
    static QString dataPath();

    // The PostgreSQL programs, by bare name: the search path finds them.
    static QString psql();
    static QString dropdb();
    static QString pg_dump();
    static QString pg_restore();

    static QString toWindowsFormat(QString path);
    static QString fromUtf8(const QString& text);

    // How a copy ended: what failed, in the system's words, and how far it
    // had come.
    using CopyResult = pagedcopy::Result;

    // Sends a text file to a device or file line by line (lines of at most
    // 127 bytes; a longer one goes as several), pausing `pauseMs` after each
    // and asking for a new sheet when one is full. The first sheet gets one
    // line more than `linesPerSheet`; 0 never asks. False when a file cannot
    // be opened, or the destination stops taking data.
    static bool copy(const QString& src, const QString& dst, unsigned linesPerSheet, unsigned pauseMs);
    // The same copy, telling why it failed.
    static CopyResult copyWithResult(const QString& src, const QString& dst, unsigned linesPerSheet,
                                     unsigned pauseMs);
    // Sends page `page` (from 0) of `linesPerPage` lines, pausing between
    // lines; 0 lines per page sends the whole file. False, with nothing
    // sent, when the file ends before that page.
    static bool copy(const QString& src, const QString& dst, unsigned linesPerPage, unsigned pauseMs,
                     unsigned page);
    static CopyResult copyWithResult(const QString& src, const QString& dst, unsigned linesPerPage,
                                     unsigned pauseMs, unsigned page);
    // The first form with numbers given as text (bad text counts as 0).
    static bool copy(const QString& src, const QString& dst, const QString& linesPerSheet,
                     const QString& pauseMs);

    // The paper prompt of the paged copy: a message box when the running
    // application can show one, otherwise a line on standard output
    // answered by a line on standard input (or its end).
    static void askForNewSheet();

    // Creates the file or empties it; a failure passes silently.
    static void touch(const QString& path);
    // A pseudo-random number, the generator seeded with the current second:
    // calls within one second answer the same.
    static QString getNewRand();
    // The index of the first entry whose text is exactly `text`, or -1.
    static int comboBoxIndexOf(const QComboBox* box, const QString& text);
    static void hsleep(unsigned seconds);

    // How many copies of a document type ("receipt", "invoice", ... in any
    // case; see DocumentTypes) to print, as the configuration's text.
    static QString copyNumber(const QString& documentType, const ZTConfiguration* configuration = nullptr);
    // An amount with two decimals: dropped beyond the third, then half up
    // (1.235 gives "1.24", 1.005 gives "1.00", -1.239 gives "-1.23").
    static QString truncateDecimal(double value);

    static QString dbname(const ZTConfiguration* configuration = nullptr);
    static QString username(const ZTConfiguration* configuration = nullptr);
    static QString password(const ZTConfiguration* configuration = nullptr);
    static QString hostname(const ZTConfiguration* configuration = nullptr);
    // A PostgreSQL connection opened by the DatabaseManager singleton with
    // the four settings above; null when it failed.
    static QSqlDatabase* newDBConnection(const QString& connectionName,
                                         const ZTConfiguration* configuration = nullptr);

    // "zentaro.bin.path" + "/" + file.
    static QString pathWithBinaryFile(const QString& file, const ZTConfiguration* configuration = nullptr);
    // The first file of the current folder named "core*", or empty text.
    static QString getCoreFile();
};
