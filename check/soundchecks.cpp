#include "soundchecks.h"

#include "problemlist.h"
#include "routetable.h"
#include "textrules.h"

#include <QDir>

namespace {

// The absolute path without "." and ".." parts, so that two spellings of
// one file count as one source.
QString cleanAbsolutePath(const QString& path)
{
    return QDir::cleanPath(QDir::isAbsolutePath(path) ? path : QDir::current().absoluteFilePath(path));
}

} // namespace

cSoundChecks::cSoundChecks(const QString& decoder, bool readHeaders, const QString& outputDir)
    : m_probe(decoder, readHeaders)
{
    if (!outputDir.isEmpty())
        m_soundDir = cleanAbsolutePath(QDir(outputDir).filePath(QStringLiteral("voskdev")));
}

cSoundChecks::cKnownSound cSoundChecks::examine(const QString& path)
{
    cKnownSound sound;
    sound.probe = m_probe.probe(path);
    const QString clean = cleanAbsolutePath(path);
    sound.inOutput = !m_soundDir.isEmpty() && clean.section(QLatin1Char('/'), 0, -2) == m_soundDir;
    const QString target = deviceFileName(path).toLower();
    const auto taken = m_targets.constFind(target);
    if (taken == m_targets.constEnd())
        m_targets.insert(target, clean);
    else if (*taken != clean)
        sound.clashesWith = *taken;
    return sound;
}

void cSoundChecks::check(cProblemList& problems, const cTextPlace& place)
{
    const QString& path = place.text;
    if (path.isEmpty())
        return;
    auto known = m_known.constFind(path);
    if (known == m_known.constEnd())
        known = m_known.insert(path, examine(path));

    const auto field = [&place] { return cTextRules::label(place.field, place.index); };
    const cSoundProbe::cResult& probe = known->probe;
    switch (probe.status) {
    case cSoundProbe::Status::Missing:
        problems.add(ProblemCode::MissingSound, place,
                     tr("The sound file \"%1\" (%2) does not exist.").arg(path, field()));
        break;
    case cSoundProbe::Status::Unreadable:
        problems.add(ProblemCode::MissingSound, place,
                     tr("The sound file \"%1\" (%2) cannot be read: %3.").arg(path, field(), probe.reason));
        break;
    case cSoundProbe::Status::Undecodable:
        problems.add(ProblemCode::UndecodableSound, place,
                     tr("The sound file \"%1\" (%2) is not a sound that can be converted: %3.")
                         .arg(path, field(), probe.reason));
        break;
    case cSoundProbe::Status::Ok:
        break;
    }
    if (known->inOutput)
        problems.add(ProblemCode::SourceInOutput, place,
                     tr("The sound file \"%1\" (%2) lies in the export's voskdev folder: converting it would "
                        "overwrite the original.")
                         .arg(path, field()));
    if (!known->clashesWith.isEmpty())
        problems.add(ProblemCode::SoundNameClash, place,
                     tr("The sound files \"%1\" and \"%2\" would both become voskdev/%3 on the device's card: one "
                        "would replace the other.")
                         .arg(known->clashesWith, path, deviceFileName(path)));
}
