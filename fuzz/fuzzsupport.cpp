#include "fuzzsupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace {

void dropMessage(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "fatal: %s\n", qPrintable(message));
        std::abort();
    }
}

QTemporaryDir* scratch = nullptr;

} // namespace

namespace fuzz {

void initialise(int* argc, char*** argv)
{
    // Lives as long as the process: libFuzzer never returns to main.
    static QCoreApplication application(*argc, *argv);
    static QTemporaryDir folder;
    if (!folder.isValid())
        fail("no scratch folder");
    scratch = &folder;
    qInstallMessageHandler(dropMessage);
}

QString scratchPath(const QString& name)
{
    return QDir(scratch->path()).filePath(name);
}

QString writeInput(const QByteArray& bytes, const QString& name)
{
    const QString path = scratchPath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        fail("cannot write the input file");
    return path;
}

void fail(const char* what)
{
    std::fprintf(stderr, "property broken: %s\n", what);
    std::abort();
}

} // namespace fuzz
