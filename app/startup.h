#ifndef VOSK_STARTUP_H
#define VOSK_STARTUP_H

class QApplication;
class QTranslator;

// The steps main() takes around the application object, kept here so that
// tests start the program the same way.
void setApplicationNames();
void applyApplicationLook(QApplication& app);
// Returns the installed translator; the caller deletes it after the loop.
QTranslator* installTranslation(QApplication& app);

#endif
