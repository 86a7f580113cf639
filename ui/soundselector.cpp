#include "soundselector.h"

#include "player.h"
#include "unsafetextmark.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QSettings>
#include <QToolButton>

namespace {

const char* const settingsGroup = "Sound";
const char* const lastDirKey = "LastDir";

QToolButton* makeButton(const QString& text, const QString& objectName, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setText(text);
    // The style sheet gives each button its icon by this name.
    button->setObjectName(objectName);
    return button;
}

} // namespace

cSoundSelector::cSoundSelector(cPlayer* player, QWidget* parent)
    : QWidget(parent)
    , playButton(makeButton(QStringLiteral(">"), QStringLiteral("cPlayButton"), this))
    , selectButton(makeButton(QStringLiteral("..."), QStringLiteral("cSelectButton"), this))
    , deleteButton(makeButton(QStringLiteral("X"), QStringLiteral("cDeleteButton"), this))
    , fileLabel(new QLabel(this))
    , player(player)
{
    fileLabel->setScaledContents(true);
    // Long names must not widen the form; the tool tip has the full path.
    fileLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    auto* layout = new QHBoxLayout(this);
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(playButton);
    layout->addWidget(selectButton);
    layout->addWidget(deleteButton);
    layout->addWidget(fileLabel);

    connect(playButton, &QToolButton::clicked, this, &cSoundSelector::playSoundFile);
    connect(selectButton, &QToolButton::clicked, this, &cSoundSelector::chooseSoundFile);
    connect(deleteButton, &QToolButton::clicked, this, &cSoundSelector::deleteSoundFile);
    clear();
}

void cSoundSelector::setSoundFile(const QString& path)
{
    filePath = path;
    refresh();
}

QString cSoundSelector::soundFile() const
{
    return filePath;
}

void cSoundSelector::clear()
{
    filePath.clear();
    deleteButton->setEnabled(false);
    playButton->setToolTip(QString());
    playButton->setEnabled(false);
    playButton->setStyleSheet(QString());
    fileLabel->clear();
    markUnsafeText(fileLabel, QString(), QString());
}

void cSoundSelector::refresh()
{
    if (filePath.isEmpty()) {
        clear();
        return;
    }
    const QString nativePath = QDir::toNativeSeparators(filePath);
    deleteButton->setEnabled(true);
    playButton->setToolTip(nativePath);
    playButton->setEnabled(true);
    // Existence is checked only here: a file that comes or goes later shows
    // on the next refresh.
    playButton->setStyleSheet(QFileInfo::exists(filePath) ? QString() : QStringLiteral("border: 1px solid red;"));
    fileLabel->setText(QFileInfo(filePath).fileName());
    markUnsafeText(fileLabel, filePath, nativePath);
}

void cSoundSelector::chooseSoundFile()
{
    QSettings settings;
    settings.beginGroup(QLatin1String(settingsGroup));
    lastDir = settings.value(QLatin1String(lastDirKey), QString()).toString();
    const QString file = QFileDialog::getOpenFileName(this, tr("Open sound file"), lastDir,
                                                      tr("Sound files (*.wav);;All files (*.*)"));
    if (file.isEmpty())
        return;
    lastDir = QFileInfo(file).absolutePath();
    settings.setValue(QLatin1String(lastDirKey), lastDir);
    settings.sync();
    setSoundFile(file);
    emit edited();
}

void cSoundSelector::deleteSoundFile()
{
    // Only the reference goes; the file on disk stays.
    clear();
    emit edited();
}

void cSoundSelector::playSoundFile()
{
    if (!filePath.isEmpty())
        player->play(filePath);
}
