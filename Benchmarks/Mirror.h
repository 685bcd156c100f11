#pragma once

#include <QString>

namespace corvane::bench {

struct MirrorSize {
    int contacts = 20'000;
    int conversations = 30'000;
    int messages = 1'000'000;
};

/// Where the schema files are: the folder that holds "local-schema/".
QString resourceFolder();

/// Writes a database as years of use leave it, the same for the same size: people on one or several channels,
/// a few busy and many quiet ones, groups, archived, muted, unread. The file appears only once it is whole.
void makeMirror(const QString& path, const MirrorSize& size = {});

/// The full mirror under `folder`, made at the first call and again only when the schema or this recipe has changed.
QString sharedMirror(const QString& folder);

}
