#ifndef VOSK_SOUNDSELECTOR_H
#define VOSK_SOUNDSELECTOR_H

#include <QString>
#include <QWidget>

class QLabel;
class QToolButton;
class cPlayer;

// The field for one sound file: play, choose and clear buttons and the
// file's name. A path to a missing file is kept, its play button framed red.
class cSoundSelector : public QWidget
{
    Q_OBJECT

public:
    // `player` is shared with the owner's other fields and not owned.
    cSoundSelector(cPlayer* player, QWidget* parent = nullptr);

    void setSoundFile(const QString& path);
    QString soundFile() const;
    void clear();

signals:
    // The user chose or deleted the file; never raised by setSoundFile or
    // clear.
    void edited();

private slots:
    void chooseSoundFile();
    void deleteSoundFile();
    void playSoundFile();

private:
    void refresh();

    QToolButton* playButton;
    QToolButton* selectButton;
    QToolButton* deleteButton;
    QLabel* fileLabel;
    QString filePath;
    cPlayer* player;
    QString lastDir;
};

#endif
