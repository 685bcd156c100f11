#pragma once

#include <QString>

namespace corvane::bench {

struct MirrorSize {
    int contacts = 20'000;
    int conversations = 30'000;
    int messages = 1'000'000;
};

/// The folder that contains "local-schema/".
QString resourceFolder();

/// Writes a database as after years of use, deterministic for a given size: people on one or several channels, a few
/// busy and many quiet ones, groups, archived, muted, unread. The file appears only when it is complete.
void makeMirror(const QString& path, const MirrorSize& size = {});

/// The full mirror in `folder`, generated at the first call and again only if the schema or this generator changed.
QString sharedMirror(const QString& folder);

}
