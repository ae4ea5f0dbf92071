/** The export command of the enlarged histogram window. */
#pragma once

#include "host/kit_widgets.h"

class Tool_Histo;

/** Asks for a file name and writes the panel's histogram there; the button shows the time between. Other messages are
 *  handled while the name is asked for: afterwards panel and window may be gone. The window alone may go: what was
 *  confirmed is written.
 *  @return 1 when a file was written; 0 when the user cancelled, the panel went away meanwhile or writing failed
 *  (reported) */
int Histo_Export(Tool_Histo& panel, Buttons& button);
/** A panel ends: an answer that is still to come writes nothing of it. */
void Histo_Export_Panel_Gone(const Tool_Histo* panel);
