#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>

#include <cstdio>
#include <initializer_list>

// The suite reports a fault as one line on standard output (not standard
// error) and carries on. The pieces are written as they are, followed by a
// line end, and flushed at once so that the line keeps its place among
// anything else written there.
void printDiagnostic(std::initializer_list<QByteArrayView> pieces);
// Where the diagnostic lines go from now on: a program whose standard output
// carries its result (a print file written to "-") sends them to standard
// error instead.
void setDiagnosticStream(std::FILE* stream);
std::FILE* diagnosticStream();

// While one of these lives, diagnostic lines are collected in it instead of
// being written: a tool that shows them among its own findings (the
// preview) takes them from here. Captures nest; the newest one collects.
class DiagnosticCapture
{
public:
    DiagnosticCapture();
    ~DiagnosticCapture();
    DiagnosticCapture(const DiagnosticCapture&) = delete;
    DiagnosticCapture& operator=(const DiagnosticCapture&) = delete;

    // The lines collected so far, without their line ends.
    const QList<QByteArray>& lines() const { return collected; }

private:
    friend void printDiagnostic(std::initializer_list<QByteArrayView> pieces);
    DiagnosticCapture* outer;
    QList<QByteArray> collected;
};
