#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "UI/DictationWindow.h"
#include "Voice/DictationAnywhere.h"

namespace corvane {

void drawDictation(Gallery& gallery)
{
    DictationAnywhere& dictation = gallery.app().dictation();
    const DictationWindow window(gallery.engine(), dictation);
    gallery.screens().shell->openSettings();
    gallery.screens().settings->setSection(u"voice"_s);
    dictation.setEnabled(true);
    gallery.save(u"settings-dictation"_s, { Look::Light, Look::Dark, Look::LightSmall });

    DictationPanel& panel = *dictation.panel();
    panel.show(u"Listening (English) … Ctrl+Alt+D to finish"_s, DictationPanelMode::Listening);
    panel.setProgress(0.3, 12);
    gallery.saveOther(*window.panel(), u"dictation-listening"_s);
    panel.show(u"Transcribing…"_s, DictationPanelMode::Busy);
    panel.setProgress(0.4);
    gallery.saveOther(*window.panel(), u"dictation-transcribing"_s);
    panel.show(u"Inserted"_s, DictationPanelMode::Done);
    gallery.saveOther(*window.panel(), u"dictation-inserted"_s);
    panel.show(u"No speech was detected in that audio."_s, DictationPanelMode::Attention);
    gallery.saveOther(*window.panel(), u"dictation-failed"_s);
    panel.hide();
    dictation.setEnabled(false);
    gallery.screens().settings->setSection(u"accounts"_s);
    gallery.screens().shell->closeSettings();
}

}
