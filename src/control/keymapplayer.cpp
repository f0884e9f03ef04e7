#include "keymapplayer.h"

#include "inputmapping.h"
#include "keymappingprofile.h"

#include <QTimer>

#include <algorithm>
#include <utility>

namespace {

constexpr int kPointerIds = 10;
constexpr int kTapDownMs = 30;
constexpr int kTapGapMs = 30;

// How many moves a mapped swipe makes: about one per 16 ms frame, from 10 to 60.
int swipeSteps(int duration)
{
    if (duration <= 159)
        return 10;
    if (duration <= 975)
        return duration / 16;
    return 60;
}

} // namespace

KeyMapPlayer::KeyMapPlayer(Touch touch, QObject *parent)
    : QObject(parent)
    , m_touch(std::move(touch))
{
}

void KeyMapPlayer::setProfile(const KeyMappingProfile *profile)
{
    m_profile = profile;
}

qint64 KeyMapPlayer::takePointerId()
{
    // Ids rotate through 0..9; one still held by another key is skipped so two fingers never merge.
    for (int tries = 0; tries < kPointerIds; ++tries) {
        const int id = m_nextPointerId;
        m_nextPointerId = (m_nextPointerId + 1) % kPointerIds;
        const bool held = m_tappingPointerIds.contains(id)
                          || std::any_of(m_held.cbegin(), m_held.cend(),
                                         [id](const HeldMapping &h) { return h.pointerId == id; });
        if (!held)
            return id;
    }
    return m_nextPointerId;
}

int KeyMapPlayer::heldIndex(int keyCode, int modifiers) const
{
    for (int i = 0; i < m_held.size(); ++i) {
        if (m_held[i].keyCode == keyCode && m_held[i].modifiers == modifiers)
            return i;
    }
    // A modifier let go before the key: the key's release still lifts its finger.
    for (int i = 0; i < m_held.size(); ++i) {
        if (m_held[i].keyCode == keyCode)
            return i;
    }
    return -1;
}

bool KeyMapPlayer::handleKey(InputEvent::Type eventType, int key, int modifiers)
{
    if (eventType == InputEvent::KeyRelease) {
        const int held = heldIndex(key, modifiers);
        if (held >= 0) {
            const HeldMapping h = m_held.takeAt(held);
            m_touch(h.pointerId, InputEvent::MouseRelease, h.releaseAt);
            return true;
        }
    }
    const KeyMappingEntry *found = m_profile ? m_profile->find(key, modifiers) : nullptr;
    if (!found)
        return false;
    if (eventType != InputEvent::KeyPress)
        return true;
    // Keyboard auto-repeat of a key whose finger is down changes nothing.
    if (heldIndex(key, modifiers) >= 0)
        return true;
    const KeyMappingEntry entry = *found;
    if (entry.type == KeyMappingType::Tap && entry.count < 1)
        return true;

    const qint64 id = takePointerId();
    if (entry.type == KeyMappingType::Tap) {
        const QPointF point(entry.x, entry.y);
        if (entry.count == 1) {
            m_held.append({entry.keyCode, entry.modifiers, id, point});
            m_touch(id, InputEvent::MousePress, point);
            return true;
        }
        m_tappingPointerIds.insert(id);
        for (int tap = 0; tap < entry.count; ++tap) {
            const int downAt = tap * (kTapDownMs + kTapGapMs);
            const bool last = tap == entry.count - 1;
            if (tap == 0)
                m_touch(id, InputEvent::MousePress, point);
            else
                QTimer::singleShot(downAt, this, [this, id, point] { m_touch(id, InputEvent::MousePress, point); });
            QTimer::singleShot(downAt + kTapDownMs, this, [this, id, point, last] {
                m_touch(id, InputEvent::MouseRelease, point);
                if (last)
                    m_tappingPointerIds.remove(id);
            });
        }
        return true;
    }

    const QPointF start(entry.startX, entry.startY);
    const QPointF end(entry.endX, entry.endY);
    m_held.append({entry.keyCode, entry.modifiers, id, end});
    m_touch(id, InputEvent::MousePress, start);
    const int steps = swipeSteps(entry.duration);
    const int interval = entry.duration / steps;
    for (int step = 1; step <= steps; ++step) {
        const float fraction = float(step) / float(steps);
        const QPointF point = start + (end - start) * fraction;
        // The moves run on their own: a key let go early lifts the finger at the end point
        // while the remaining moves still follow.
        if (step == 1)
            m_touch(id, InputEvent::MouseMove, point);
        else
            QTimer::singleShot((step - 1) * interval, this,
                               [this, id, point] { m_touch(id, InputEvent::MouseMove, point); });
    }
    return true;
}

void KeyMapPlayer::releaseAll()
{
    const QList<HeldMapping> held = std::exchange(m_held, {});
    for (const HeldMapping &h : held)
        m_touch(h.pointerId, InputEvent::MouseRelease, h.releaseAt);
}
