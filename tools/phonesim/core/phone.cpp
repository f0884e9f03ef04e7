#include "phone.h"

#include "journal.h"
#include "phonechannel.h"

#include <QDir>
#include <QFileInfo>

Phone::Phone(const PhoneProfile &profile, QObject *parent)
    : QObject(parent)
    , m_profile(profile)
{
    QDir().mkpath(m_profile.dataDir + "/sandbox");
    m_journal = new Journal(m_profile.dataDir + "/journal.jsonl", m_profile.serial);
}

Phone::~Phone()
{
    delete m_journal;
}

QString Phone::sandboxPath(const QString &devicePath) const
{
    QString clean = QDir::cleanPath("/" + devicePath);
    return m_profile.dataDir + "/sandbox" + clean;
}

bool Phone::deviceFileExists(const QString &devicePath) const
{
    return QFileInfo(sandboxPath(devicePath)).isFile();
}

QSize Phone::displaySize() const
{
    return (m_rotation % 2) ? m_profile.screenSize.transposed() : m_profile.screenSize;
}

void Phone::setRotation(int rotation)
{
    rotation = ((rotation % 4) + 4) % 4;
    if (rotation == m_rotation)
        return;
    m_rotation = rotation;
    emit rotationChanged(m_rotation);
}

void Phone::setClipboard(const QString &text, bool fromPc)
{
    m_clipboard = text;
    if (!fromPc)
        emit clipboardChangedOnPhone(text);
}

PhoneChannel *Phone::openReverse(const QString &abstractName) const
{
    return m_reverseOpener ? m_reverseOpener(abstractName) : nullptr;
}
