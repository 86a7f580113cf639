#ifndef VOSK_PROJECT_H
#define VOSK_PROJECT_H

#include <QList>
#include <QString>
#include <QStringList>
#include <QUuid>

// Plain value records of a project. Field names double as the keys of the
// route table text, so renaming one changes the file format.

struct cStop
{
    QString name;
    QString full_name;
    bool is_key_stop = false;
    double lon = 37.619977;
    double lat = 55.753697;
    int radius = 35;
    bool course_enabled = false;
    int course_value = 0;
    int course_diff = 60;
    QString sound;
    QStringList other_sounds;
    QString other_text;
    QUuid id;
};

struct cBaseTexts
{
    QString current;
    QString next;
    QString last;
};

struct cBranch
{
    QString first;
    QString last;
    QList<cStop> stops;
};

struct cRoute
{
    QString name;
    QString short_name;
    QString type = QStringLiteral("bidir");
    bool play_sound = true;
    bool display_text = true;
    cBaseTexts base_sound;
    cBaseTexts base_text;
    cBranch direct;
    cBranch reverse;
    QUuid id;
};

struct cProject
{
    QUuid id = QUuid::createUuid();
    int version = 1;
    QList<cRoute> routes;
};

#endif
