#pragma once

namespace corvane {

class Gallery;

// Each starts in the inbox and returns to it.

void drawInbox(Gallery& gallery);
void drawAssistant(Gallery& gallery);
void drawContact(Gallery& gallery);
void drawCalendar(Gallery& gallery);
void drawToday(Gallery& gallery);
void drawApprovals(Gallery& gallery);
void drawSettings(Gallery& gallery);
void drawCare(Gallery& gallery);
void drawDictation(Gallery& gallery);
void drawHubs(Gallery& gallery);
void drawDev(Gallery& gallery);
void drawTerminals(Gallery& gallery);
void drawCalls(Gallery& gallery);
void drawWeb(Gallery& gallery);
void drawWall(Gallery& gallery);

}
