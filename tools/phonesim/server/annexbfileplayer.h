#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>

// A pre-encoded H.264 Annex B file, cut into access units and played in a loop, so a phone can
// stream real footage without spending time on encoding. Parameter sets (SPS, PPS) are taken out
// of the frames and form the configuration packet, as a phone's encoder delivers them.
class AnnexBFilePlayer
{
public:
    struct AccessUnit
    {
        QByteArray data;      // NAL units with 4-byte start codes
        bool keyFrame = false; // holds an IDR slice
    };

    bool load(const QString &path, QString *error);
    QByteArray config() const { return m_config; }
    QSize size() const { return m_size; }
    // Such files carry no reliable timing; they are played at this rate.
    int frameRate() const { return 30; }
    const QList<AccessUnit> &accessUnits() const { return m_units; }

    // The next access unit, starting over after the last one.
    const AccessUnit &next();
    void rewind() { m_position = 0; }

    // NAL unit payloads (without start codes) in file order.
    static QList<QByteArray> splitNalUnits(const QByteArray &stream);
    // Groups NAL units into access units; SPS and PPS go to `config` instead.
    static QList<AccessUnit> groupAccessUnits(const QList<QByteArray> &nalUnits, QByteArray *config);

private:
    static QSize probeSize(const QByteArray &config, const QList<AccessUnit> &units);

    QByteArray m_config;
    QList<AccessUnit> m_units;
    QSize m_size;
    int m_position = 0;
};
