#include "geo.h"

#include <QtTest>

class tst_geo : public QObject
{
    Q_OBJECT

private slots:
    void distances();
    void bearings();
    void courseWindowsCrossNorth();
    void destinationReturnsAlongTheBearing();
};

void tst_geo::distances()
{
    // One degree of a great circle on the mean sphere.
    QCOMPARE(qRound(geo::distanceMetres(0, 0, 0, 1)), 111195);
    QCOMPARE(qRound(geo::distanceMetres(0, 0, 1, 0)), 111195);
    // Moscow, Red Square to St Petersburg, Palace Square: about 634 km.
    QCOMPARE(qRound(geo::distanceMetres(37.6205, 55.7539, 30.3159, 59.9390) / 1000), 634);
    QCOMPARE(geo::distanceMetres(37.619977, 55.753697, 37.619977, 55.753697), 0.0);
    // Antipodes: half the circumference, no NaN from rounding.
    QCOMPARE(qRound(geo::distanceMetres(0, 0, 180, 0) / 1000), 20015);
    // Across the antimeridian the short way round.
    QVERIFY(geo::distanceMetres(179.9999, 0, -179.9999, 0) < 30);
}

void tst_geo::bearings()
{
    QCOMPARE(geo::bearingDegrees(0, 0, 0, 1), 0.0);
    QCOMPARE(qRound(geo::bearingDegrees(0, 0, 1, 0)), 90);
    QCOMPARE(qRound(geo::bearingDegrees(0, 0, 0, -1)), 180);
    QCOMPARE(qRound(geo::bearingDegrees(0, 0, -1, 0)), 270);
    QCOMPARE(geo::bearingDegrees(10, 10, 10, 10), 0.0);
}

void tst_geo::courseWindowsCrossNorth()
{
    // 350 deg with a sector 40 deg wide accepts 330..10.
    QVERIFY(geo::headingInCourse(5, 350, 40));
    QVERIFY(geo::headingInCourse(330, 350, 40));
    QVERIFY(geo::headingInCourse(10, 350, 40));
    QVERIFY(!geo::headingInCourse(10.5, 350, 40));
    QVERIFY(!geo::headingInCourse(170, 350, 40));
    QVERIFY(geo::headingInCourse(359.9, 0, 1));
    QVERIFY(geo::headingInCourse(180, 0, 360));
    QCOMPARE(geo::angleBetween(350, 10), 20.0);
    QCOMPARE(geo::angleBetween(-90, 90), 180.0);
}

void tst_geo::destinationReturnsAlongTheBearing()
{
    double lon = 0, lat = 0;
    geo::destination(37.6, 55.75, 60, 250, &lon, &lat);
    QCOMPARE(qRound(geo::distanceMetres(37.6, 55.75, lon, lat) * 1000), 250000);
    QCOMPARE(qRound(geo::bearingDegrees(37.6, 55.75, lon, lat)), 60);
    geo::destination(179.999, 0, 90, 1000, &lon, &lat);
    QVERIFY(lon < -179.99 && lon > -180);
}

QTEST_APPLESS_MAIN(tst_geo)
#include "tst_geo.moc"
