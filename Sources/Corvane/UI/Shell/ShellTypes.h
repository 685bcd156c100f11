#pragma once

#include "Shell/AppShell.h"
#include "Shell/ClosingNotice.h"
#include "Shell/ContentView.h"
#include "Shell/Notices.h"
#include "Shell/ProfileMenu.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct AppShellType {
    Q_GADGET
    QML_FOREIGN(corvane::AppShell)
    QML_NAMED_ELEMENT(AppShell)
    QML_UNCREATABLE("The program makes it.")
};

struct TopHubBarType {
    Q_GADGET
    QML_FOREIGN(corvane::TopHubBar)
    QML_NAMED_ELEMENT(TopHubBar)
    QML_UNCREATABLE("The program makes it.")
};

struct HelpTopicType {
    Q_GADGET
    QML_FOREIGN(corvane::HelpTopic)
    QML_VALUE_TYPE(helpTopic)
};

struct ClosingNoticeType {
    Q_GADGET
    QML_FOREIGN(corvane::ClosingNotice)
    QML_NAMED_ELEMENT(ClosingNotice)
    QML_UNCREATABLE("The program makes it.")
};

struct ContentViewType {
    Q_GADGET
    QML_FOREIGN(corvane::ContentView)
    QML_NAMED_ELEMENT(ContentView)
    QML_UNCREATABLE("The program makes it.")
};

struct NoticesType {
    Q_GADGET
    QML_FOREIGN(corvane::Notices)
    QML_NAMED_ELEMENT(Notices)
    QML_UNCREATABLE("The program makes it.")
};

struct ProfileMenuType {
    Q_GADGET
    QML_FOREIGN(corvane::ProfileMenu)
    QML_NAMED_ELEMENT(ProfileMenu)
    QML_UNCREATABLE("The program makes it.")
};

struct HubRowType {
    Q_GADGET
    QML_FOREIGN(corvane::HubRow)
    QML_VALUE_TYPE(hubRow)
};

struct NoticeType {
    Q_GADGET
    QML_FOREIGN(corvane::Notice)
    QML_VALUE_TYPE(notice)
};

}
