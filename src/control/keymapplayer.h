#pragma once

#include "inputmapping.h"

#include <QList>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QSet>

#include <functional>

class KeyMappingProfile;

// Plays a key-mapping profile: a mapped key becomes touches (held fingers, repeated taps, swipes)
// at points given as fractions of the picture. The touches go out through the callback, so the
// player never knows how a touch is written.
class KeyMapPlayer : public QObject
{
    Q_OBJECT

public:
    // eventType is one of the mouse types.
    using Touch = std::function<void(qint64 pointerId, InputEvent::Type eventType, const QPointF &fraction)>;

    explicit KeyMapPlayer(Touch touch, QObject *parent = nullptr);

    // Not owned: a profile deleted by its owner turns the mapping off.
    void setProfile(const KeyMappingProfile *profile);
    // True when the key belongs to the profile (or lifts a finger it holds): then it is not typed.
    bool handleKey(InputEvent::Type eventType, int key, int modifiers);
    // Lifts every finger that a held key keeps down.
    void releaseAll();

private:
    // A mapped key whose finger is down until the key goes up.
    struct HeldMapping
    {
        int keyCode = 0;
        int modifiers = 0;
        qint64 pointerId = 0;
        // Where the finger is lifted, as a fraction of the view.
        QPointF releaseAt;
    };

    qint64 takePointerId();
    int heldIndex(int keyCode, int modifiers) const;

    Touch m_touch;
    QPointer<const KeyMappingProfile> m_profile;
    QList<HeldMapping> m_held;
    // Fingers of repeated taps still playing: as busy as a held key's.
    QSet<qint64> m_tappingPointerIds;
    int m_nextPointerId = 0;
};
