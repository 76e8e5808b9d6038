#pragma once

#include "paper.h"

#include <QByteArray>
#include <QString>

class ZTConfiguration;

namespace preview {

struct PreviewSettings
{
    // Settings of the print run, which must be given and outlive the call.
    const ZTConfiguration* configuration = nullptr;
    // Paper width in characters for every section; 0: each document's
    // configured paperWidth (for a print file, the widest configured one).
    int width = 0;
    // The code page a print file is written in; empty: the locale's.
    QByteArray codePage;
};

// The paper a request prints, rendered in memory as the print run renders
// it (same driver, same settings, the label catalogue installed by the
// caller), with what is wrong with the request flagged on the lines it
// prints: elements and attributes its document does not read, elements
// before its method element, settings that read as 0 or false from text
// that is neither, characters its code page lacks, what the print run
// reports. `source` names the request in the findings.
Paper previewRequest(const QByteArray& request, const QString& source, const PreviewSettings& settings);

// The paper of a print file written by the print run.
Paper previewPrintFile(const QByteArray& printFile, const QString& source, const PreviewSettings& settings);

// Either of the two, as the content says; lines wider than the paper, and
// a last section left open, are flagged in both.
Paper previewInput(const QByteArray& input, const QString& source, const PreviewSettings& settings);

} // namespace preview
