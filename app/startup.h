#ifndef VOSK_STARTUP_H
#define VOSK_STARTUP_H

class QApplication;
class QStringList;
class QTranslator;
class cMainWindow;

// The steps main() takes around the application object, kept here so that
// tests start the program the same way.
void setApplicationNames();
void applyApplicationLook(QApplication& app);
// Returns the installed translator; the caller deletes it after the loop.
QTranslator* installTranslation(QApplication& app);

// The project files named on the command line: every argument after the
// program's path except the sound device choice.
QStringList projectFileArguments(const QStringList& arguments);
// Opens the project named on the command line the way the Open command does.
void openProjectFromArguments(cMainWindow& window, const QStringList& arguments);

#endif
