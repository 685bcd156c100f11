#pragma once

#include "Care/Backup/BackupKeeper.h"
#include "Care/Doctor/DoctorView.h"
#include "Platform/HotKey.h"
#include "Settings/Appearance.h"
#include "Settings/DictationSettings.h"
#include "Settings/IntegrationsView.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct SettingsSectionType {
    Q_GADGET
    QML_FOREIGN(corvane::SettingsSection)
    QML_VALUE_TYPE(settingsSection)
};

struct BackupKeeperType {
    Q_GADGET
    QML_FOREIGN(corvane::BackupKeeper)
    QML_NAMED_ELEMENT(BackupKeeper)
    QML_UNCREATABLE("The program makes it.")
};

struct DoctorViewType {
    Q_GADGET
    QML_FOREIGN(corvane::DoctorView)
    QML_NAMED_ELEMENT(DoctorView)
    QML_UNCREATABLE("The program makes it.")
};

struct FindingType {
    Q_GADGET
    QML_FOREIGN(corvane::Finding)
    QML_VALUE_TYPE(finding)
};

struct IntegrationsViewType {
    Q_GADGET
    QML_FOREIGN(corvane::IntegrationsView)
    QML_NAMED_ELEMENT(IntegrationsView)
    QML_UNCREATABLE("The program makes it.")
};

struct AccountsViewType {
    Q_GADGET
    QML_FOREIGN(corvane::AccountsView)
    QML_NAMED_ELEMENT(AccountsView)
    QML_UNCREATABLE("The program makes it.")
};

struct PairingSheetType {
    Q_GADGET
    QML_FOREIGN(corvane::PairingSheet)
    QML_NAMED_ELEMENT(PairingSheet)
    QML_UNCREATABLE("The program makes it.")
};

struct ConnectFormType {
    Q_GADGET
    QML_FOREIGN(corvane::ConnectForm)
    QML_NAMED_ELEMENT(ConnectForm)
    QML_UNCREATABLE("The program makes it.")
};

struct MailFormType {
    Q_GADGET
    QML_FOREIGN(corvane::MailForm)
    QML_NAMED_ELEMENT(MailForm)
    QML_UNCREATABLE("The program makes it.")
};

struct MailServerFormType {
    Q_GADGET
    QML_FOREIGN(corvane::MailServerForm)
    QML_NAMED_ELEMENT(MailServerForm)
    QML_UNCREATABLE("The program makes it.")
};

struct ControlChatSettingsType {
    Q_GADGET
    QML_FOREIGN(corvane::ControlChatSettings)
    QML_NAMED_ELEMENT(ControlChatSettings)
    QML_UNCREATABLE("The program makes it.")
};

struct AssistantSettingsType {
    Q_GADGET
    QML_FOREIGN(corvane::AssistantSettings)
    QML_NAMED_ELEMENT(AssistantSettings)
    QML_UNCREATABLE("The program makes it.")
};

struct SyncSettingsType {
    Q_GADGET
    QML_FOREIGN(corvane::SyncSettings)
    QML_NAMED_ELEMENT(SyncSettings)
    QML_UNCREATABLE("The program makes it.")
};

struct WebSettingsType {
    Q_GADGET
    QML_FOREIGN(corvane::WebSettings)
    QML_NAMED_ELEMENT(WebSettings)
    QML_UNCREATABLE("The program makes it.")
};

struct PushSettingsType {
    Q_GADGET
    QML_FOREIGN(corvane::PushSettings)
    QML_NAMED_ELEMENT(PushSettings)
    QML_UNCREATABLE("The program makes it.")
};

struct PushSheetType {
    Q_GADGET
    QML_FOREIGN(corvane::PushSheet)
    QML_NAMED_ELEMENT(PushSheet)
    QML_UNCREATABLE("The program makes it.")
};

struct HotKeyType {
    Q_GADGET
    QML_FOREIGN(corvane::HotKey)
    QML_NAMED_ELEMENT(HotKey)
    QML_UNCREATABLE("The program makes it.")
};

struct SystemSettingsType {
    Q_GADGET
    QML_FOREIGN(corvane::SystemSettings)
    QML_NAMED_ELEMENT(SystemSettings)
    QML_UNCREATABLE("The program makes it.")
};

struct DictationSettingsType {
    Q_GADGET
    QML_FOREIGN(corvane::DictationSettings)
    QML_NAMED_ELEMENT(DictationSettings)
    QML_UNCREATABLE("The program makes it.")
};

struct VoiceSettingsType {
    Q_GADGET
    QML_FOREIGN(corvane::VoiceSettings)
    QML_NAMED_ELEMENT(VoiceSettings)
    QML_UNCREATABLE("The program makes it.")
};

struct ToolServerCardType {
    Q_GADGET
    QML_FOREIGN(corvane::ToolServerCard)
    QML_NAMED_ELEMENT(ToolServerCard)
    QML_UNCREATABLE("The program makes it.")
};

struct AppearanceType {
    Q_GADGET
    QML_FOREIGN(corvane::Appearance)
    QML_NAMED_ELEMENT(Appearance)
    QML_UNCREATABLE("The program makes it.")
};

struct AccountRowType {
    Q_GADGET
    QML_FOREIGN(corvane::AccountRow)
    QML_VALUE_TYPE(accountRow)
};

struct AccountActionType {
    Q_GADGET
    QML_FOREIGN(corvane::AccountAction)
    QML_VALUE_TYPE(accountAction)
};

struct ConnectFlowType {
    Q_GADGET
    QML_FOREIGN(corvane::ConnectFlow)
    QML_VALUE_TYPE(connectFlow)
};

struct AssistantBackendType {
    Q_GADGET
    QML_FOREIGN(corvane::AssistantBackend)
    QML_VALUE_TYPE(assistantBackend)
};

struct SpeechModelLineType {
    Q_GADGET
    QML_FOREIGN(corvane::SpeechModelLine)
    QML_VALUE_TYPE(speechModelLine)
};

struct PublishedModelLineType {
    Q_GADGET
    QML_FOREIGN(corvane::PublishedModelLine)
    QML_VALUE_TYPE(publishedModelLine)
};

struct MachineFactType {
    Q_GADGET
    QML_FOREIGN(corvane::MachineFact)
    QML_VALUE_TYPE(machineFact)
};

struct MemoryLineType {
    Q_GADGET
    QML_FOREIGN(corvane::MemoryLine)
    QML_VALUE_TYPE(memoryLine)
};

struct SyncHealthLineType {
    Q_GADGET
    QML_FOREIGN(corvane::SyncHealthLine)
    QML_VALUE_TYPE(syncHealthLine)
};

struct IntegrationLineType {
    Q_GADGET
    QML_FOREIGN(corvane::IntegrationLine)
    QML_VALUE_TYPE(integrationLine)
};

struct PushChatLineType {
    Q_GADGET
    QML_FOREIGN(corvane::PushChatLine)
    QML_VALUE_TYPE(pushChatLine)
};

struct PushAccountLineType {
    Q_GADGET
    QML_FOREIGN(corvane::PushAccountLine)
    QML_VALUE_TYPE(pushAccountLine)
};

struct KeptLineType {
    Q_GADGET
    QML_FOREIGN(corvane::KeptLine)
    QML_VALUE_TYPE(keptLine)
};

struct ControlChatRowType {
    Q_GADGET
    QML_FOREIGN(corvane::ControlChatRow)
    QML_VALUE_TYPE(controlChatRow)
};

struct LocalAccessType {
    Q_GADGET
    QML_FOREIGN(corvane::LocalAccess)
    QML_NAMED_ELEMENT(LocalAccess)
    QML_UNCREATABLE("The program makes it.")
};

struct LocalAccessRowType {
    Q_GADGET
    QML_FOREIGN(corvane::LocalAccessRow)
    QML_VALUE_TYPE(localAccessRow)
};

}
