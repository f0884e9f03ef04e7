#pragma once

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <QTextStream>

// Drives tests/support/fakeadb: a stand-in adb that records its arguments and answers by rules.
class FakeAdb
{
public:
    FakeAdb()
    {
        qputenv("FAKEADB_DIR", m_dir.path().toLocal8Bit());
        // A copy named "adb", so that a PATH lookup finds it too.
        QFile::copy(QString(KORVEL_TEST_SUPPORT_DIR) + "/fakeadb", m_dir.filePath("adb"));
        QFile::setPermissions(m_dir.filePath("adb"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QString program() const { return m_dir.filePath("adb"); }
    QString folder() const { return m_dir.path(); }

    // glob over the space-joined arguments; texts use printf %b escapes ("\\n").
    void addRule(const QString &glob, int exitCode = 0, const QString &out = {}, const QString &err = {},
                 double sleepSeconds = 0)
    {
        QFile rules(m_dir.filePath("rules"));
        rules.open(QIODevice::Append);
        const QChar rs(0x1e);
        QTextStream(&rules) << glob << rs << exitCode << rs << sleepSeconds << rs << out << rs << err << '\n';
    }

    void clear()
    {
        QFile::remove(m_dir.filePath("rules"));
        QFile::remove(m_dir.filePath("calls"));
    }

    // Every call so far, each as its argument list.
    QList<QStringList> calls() const
    {
        QList<QStringList> result;
        QFile file(m_dir.filePath("calls"));
        if (!file.open(QIODevice::ReadOnly))
            return result;
        for (const QByteArray &line : file.readAll().split('\n')) {
            if (!line.isEmpty())
                result.append(QString::fromUtf8(line).split(QChar(0x1f)));
        }
        return result;
    }

private:
    QTemporaryDir m_dir;
};
