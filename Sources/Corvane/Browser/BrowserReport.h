#pragma once

#include "Browser/BrowserEvidence.h"

namespace corvane {

/// A file that stands beside the report.
struct ReportFile {
    QString name;
    QByteArray content;
};

/// One page that can be read in any browser for as long as there are browsers: no script, nothing from outside, the
/// picture inside, and a hash of each file beside it. Everything from the page stands in it as plain text.
QByteArray evidenceReport(const BrowserEvidencePayload& payload, const QList<ReportFile>& files);

}
