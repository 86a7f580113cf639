#ifndef VOSK_GUISUPPORT_H
#define VOSK_GUISUPPORT_H

#include <QEvent>
#include <QObject>
#include <QPoint>
#include <QString>
#include <QTemporaryDir>

#include <functional>

class QWidget;

namespace guisupport {

// The descendant named `name`; without it the test has nothing to check.
template <typename T = QWidget>
T* child(QObject* parent, const char* name)
{
    T* found = parent->findChild<T*>(QLatin1String(name));
    if (!found)
        qFatal("no %s", name);
    return found;
}

// Runs `answer` on the next modal dialog once it is shown, from inside its
// event loop, so a test can drive code that blocks on a dialog.
void answerNextModal(const std::function<void(QWidget* dialog)>& answer);

// Answers not yet used; dropping returns how many there were (between test
// functions, so that no answer outlives the variables it writes to).
int pendingAnswers();
int dropPendingAnswers();

// Answers the next file dialog with `path`, or cancels it when empty;
// `openedIn` takes the folder the dialog opened in.
void answerFileDialog(const QString& path, QString* openedIn = nullptr);
// What that answer does to a file dialog once it is shown.
void chooseFile(QWidget* fileDialog, const QString& path);

// Reads the next message box's text into `text` (if given) and presses the
// button with `buttonText`, or the default button when empty.
void answerMessageBox(QString* text = nullptr, const QString& buttonText = QString());

// Mouse input as the window system delivers it; a click is a press and a
// release of the left button.
void sendMouse(QWidget* widget, QEvent::Type type, const QPoint& pos, Qt::MouseButtons buttons = Qt::NoButton,
               Qt::MouseButton button = Qt::LeftButton);
void click(QWidget* widget, const QPoint& pos);
void sendWheel(QWidget* widget, const QPoint& pos, int delta, int times = 1,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier);

// Points settings and data folders at a temporary folder for the whole test
// process, so that tests never touch the user's own files.
class cIsolatedHome
{
public:
    cIsolatedHome();
    QString path() const { return m_dir.path(); }

private:
    QTemporaryDir m_dir;
};

} // namespace guisupport

// A test main for widget tests: isolated settings, the program's names, its
// style sheet and icons, but no translation, so tests see the source texts.
#define VOSK_GUI_TEST_MAIN(TestObject)                  \
    int main(int argc, char* argv[])                    \
    {                                                   \
        guisupport::cIsolatedHome home;                 \
        setApplicationNames();                          \
        QApplication app(argc, argv);                   \
        applyApplicationLook(app);                      \
        TestObject test;                                \
        return QTest::qExec(&test, argc, argv);         \
    }

#endif
