#ifndef VOSK_SOUNDCHECKS_H
#define VOSK_SOUNDCHECKS_H

#include "soundprobe.h"

#include <QCoreApplication>
#include <QHash>
#include <QString>

class cProblemList;
struct cTextPlace;

// Whether every sound of the exported routes can be converted, and into a
// file of its own on the device's card. Each distinct path is looked at
// once, however many stops use it.
class cSoundChecks
{
    Q_DECLARE_TR_FUNCTIONS(cSoundChecks)

public:
    // `outputDir` is where the export writes; empty when not known.
    cSoundChecks(const QString& decoder, bool readHeaders, const QString& outputDir);

    // One sound field of the current route; empty fields are skipped.
    void check(cProblemList& problems, const cTextPlace& place);
    bool sawSounds() const { return !m_known.isEmpty(); }

private:
    struct cKnownSound
    {
        cSoundProbe::cResult probe;
        bool inOutput = false;
        // The earlier source that becomes the same file on the card.
        QString clashesWith;
    };

    cKnownSound examine(const QString& path);

    cSoundProbe m_probe;
    QString m_soundDir;
    QHash<QString, cKnownSound> m_known;
    // Clean source paths by the lower-cased name of the file they become:
    // the card is FAT, which ignores case.
    QHash<QString, QString> m_targets;
};

#endif
