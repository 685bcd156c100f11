#include "Approvals/ApprovalsView.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Approvals/ApprovalsStore.h"
#include "Engines/DraftDelivery.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Store/Approvals/CrmProposals.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Approvals/WorkDecisions.h"
#include "Store/Core/LocalDB.h"

namespace corvane {

namespace {

/// Inserts drafts, CRM updates and decisions that agents left for the owner.
void letItemsWait(LocalDB& db, const QString& megan, const QString& hannah)
{
    const auto draft = [&](const QString& contact, const QString& text) {
        const auto conversation = db.scalar(
            u"SELECT id FROM unified_conversation WHERE contact_id=? AND deleted_at IS NULL LIMIT 1;"_s, { contact });
        queueDraft(db, conversation.value_or(QString()), text, u"mcp"_s);
    };
    draft(megan, u"Hi Megan, the second firing is done. Shall I bring the bowls on Thursday?"_s);
    draft(hannah,
        u"Dear Hannah,\n\nthank you for the drawings. The glaze you chose needs a test tile first; I can have two of "
        u"them ready by Tuesday, one on the dark clay and one on the white.\n\nIf you would rather decide in the "
        u"studio, we open at ten. There is coffee, and the kiln is still warm.\n\nThe price would stay as it is in "
        u"the offer, and delivery takes four weeks from your yes.\n\nBest wishes\nMarta"_s);
    draft(megan, u"Hi Megan, thank you for the kind words about the exhibition."_s);
    db.run(u"UPDATE outbound_draft SET status='placed' WHERE body LIKE '%kind words%';"_s);
    db.run(u"UPDATE outbound_draft SET status='failed', error='The phone is not connected.' WHERE status='pending' AND "
           u"body LIKE 'Dear Hannah%';"_s);
    db.run(
        uR"(INSERT INTO crm_update_proposal(id, workspace_id, contact_id, kind, title, payload_json, status, created_at, updated_at)
VALUES('p1','local',?,'task','Follow up on the offer','{"title":"Ask Hannah whether the test tiles are right"}','pending',1,1),
('p2','local',?,'note','Note from the call','{"body":"Prefers the matte celadon; the order is for the restaurant, forty plates."}','pending',0,0);)"_s,
        { hannah, megan });
    db.run(uR"(INSERT INTO work_decision(id, module, title, status, proposal, rationale, risk, created_at, updated_at)
VALUES('w1','ops','Pay the clay delivery','proposed','Transfer 412.80 EUR to Arcillas del Sur for invoice 2025-311.','It is due on Monday, and the amount matches the order.','money','1','5'),
('w2','dev','Renew the shop token','proposed','Replace the token of the web shop before it runs out.','The present one ends in three days.','credential','1','4'),
('w3','gtm','Write to the gallery in Porto','proposed','Send the new catalogue to the three galleries that asked in spring.','','external','1','3'),
('w4','dev','Delete the old photo backups','proposed','Remove 38 GB of copies that exist twice.','Every file was compared.','high','1','2'),
('w5','cx','Answer reviews once a week','proposed','Collect them on Fridays.','','routine','1','1');)"_s);
}

/// Decides on one of each kind, without the five-second undo window.
void decideSome(DraftDelivery& delivery)
{
    LocalDB& db = delivery.db();
    for (const PendingDraft& draft : QList<PendingDraft>(delivery.pending())) {
        if (draft.status == u"failed")
            (void)rejectDraft(db, draft.id);
        else if (approveDraft(db, draft.id, draftHash(draft)) == Decided::Taken
            && DraftClaim::claim(db, draft.id).draft)
            acknowledgeDraft(db, draft.accountId, draft.id, u"sent"_s, std::nullopt, {});
    }
    if (const auto note = crmProposal(db, u"p2"_s))
        (void)applyCRMUpdateProposal(db, note->id, proposalHash(*note));
    (void)rejectWorkDecision(db, u"w3"_s, u"Oskel"_s);
    if (const auto payment = fetchWorkDecision(db, u"w1"_s))
        (void)approveWorkDecision(db, payment->id, u"Oskel"_s, decisionHash(*payment));
}

}

void drawApprovals(Gallery& gallery)
{
    LocalDB& db = gallery.db();
    const auto look = [&gallery] {
        gallery.app().delivery().refresh();
        gallery.app().approvals().refresh();
        gallery.wait(Milliseconds(200));
    };
    gallery.screens().shell->openApprovals();
    look();
    gallery.save(u"approvals-empty"_s, { Look::Light, Look::Dark });
    gallery.screens().approvals->log()->setShown(true);
    gallery.wait(Milliseconds(200));
    gallery.save(u"approvals-nothing-decided"_s, { Look::Light });
    gallery.screens().approvals->log()->setShown(false);
    gallery.screens().panel->setTab(u"approvals"_s);
    gallery.savePanel(u"panel-approvals-empty"_s, { Look::Light });

    letItemsWait(db, gallery.contactNamed(u"Megan Price"_s), gallery.contactNamed(u"Hannah Fischer"_s));
    look();
    gallery.save(u"approvals-filled"_s, { Look::Light, Look::Dark, Look::LightSmall });
    gallery.savePanel(u"panel-approvals"_s, { Look::Light, Look::Dark });
    const QString first = gallery.screens().approvals->rows()->index(1, 0).data(Qt::UserRole).toString();
    gallery.screens().approvals->approve(first);
    gallery.wait(Milliseconds(200));
    gallery.save(u"approvals-armed"_s, { Look::Light, Look::Dark });
    gallery.screens().approvals->undo(first);
    gallery.screens().approvals->approve(u"decision:w1"_s);
    gallery.wait(Milliseconds(200));
    gallery.save(u"approvals-asked"_s, { Look::Light, Look::Dark });
    gallery.screens().approvals->stepBack();
    gallery.screens().approvals->edit(first);
    gallery.wait(Milliseconds(200));
    gallery.save(u"approvals-edited"_s, { Look::Light });
    gallery.screens().approvals->editor()->close();
    gallery.screens().panel->setTab(u"now"_s);
    gallery.savePanel(u"panel-now"_s, { Look::Light, Look::Dark });
    gallery.screens().shell->openSettings();
    gallery.screens().settings->setSection(u"approvals"_s);
    gallery.save(u"settings-approvals-waiting"_s, { Look::Light, Look::Dark });
    gallery.screens().settings->setSection(u"accounts"_s);
    decideSome(gallery.app().delivery());
    gallery.screens().shell->openApprovals();
    gallery.screens().approvals->log()->setShown(true);
    gallery.wait(Milliseconds(200));
    gallery.save(u"approvals-decided"_s, { Look::Light, Look::Dark, Look::LightSmall });
    gallery.screens().approvals->log()->setShown(false);
    gallery.screens().shell->closeApprovals();
    db.run(u"DELETE FROM outbound_draft WHERE status IN ('pending','failed');"_s);
    db.run(u"DELETE FROM crm_update_proposal WHERE status='pending';"_s);
    db.run(u"DELETE FROM work_decision WHERE status='proposed';"_s);
    look();
}

}
