#pragma once

#include "Browser/BrowserEvidence.h"

namespace corvane {

/// A file next to the report.
struct ReportFile {
    QString name;
    QByteArray content;
};

/// A self-contained page for any browser: no scripts, no external resources, the picture embedded, and a hash of each
/// file next to it. Everything from the page is in it as plain text.
QByteArray evidenceReport(const BrowserEvidencePayload& payload, const QList<ReportFile>& files);

}
