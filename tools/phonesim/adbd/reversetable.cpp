#include "reversetable.h"

QByteArray ReverseTable::handle(const QString &request, const QString &label, bool *changed)
{
    if (changed)
        *changed = false;
    if (request == "list-forward") {
        QByteArray text;
        for (const auto &entry : m_entries)
            text += QString("%1 %2 %3\n").arg(label, entry.first, entry.second).toUtf8();
        return lengthPrefixed(text);
    }
    if (request == "killforward-all") {
        if (changed)
            *changed = !m_entries.isEmpty();
        m_entries.clear();
        return okay();
    }
    if (request.startsWith("killforward:")) {
        const QString local = request.mid(int(qstrlen("killforward:")));
        for (int i = 0; i < m_entries.size(); ++i) {
            if (m_entries.at(i).first == local) {
                m_entries.removeAt(i);
                if (changed)
                    *changed = true;
                return okay();
            }
        }
        return fail(QString("listener '%1' not found").arg(local));
    }
    bool noRebind = false;
    QString pair;
    if (request.startsWith("forward:norebind:")) {
        noRebind = true;
        pair = request.mid(int(qstrlen("forward:norebind:")));
    } else if (request.startsWith("forward:")) {
        pair = request.mid(int(qstrlen("forward:")));
    } else {
        return fail(QString("unknown reverse request '%1'").arg(request));
    }
    const int semicolon = pair.indexOf(';');
    const QString local = pair.left(semicolon);
    const QString remote = semicolon < 0 ? QString() : pair.mid(semicolon + 1);
    const bool localOk = local.startsWith("localabstract:") || local.startsWith("tcp:")
        || local.startsWith("localreserved:") || local.startsWith("localfilesystem:");
    if (semicolon < 0 || !localOk || !remote.startsWith("tcp:") || local.indexOf(':') == local.size() - 1)
        return fail(QString("malformed forward request '%1'").arg(pair));
    for (auto &entry : m_entries) {
        if (entry.first == local) {
            if (noRebind)
                return fail("cannot rebind existing socket");
            entry.second = remote;
            if (changed)
                *changed = true;
            return okay();
        }
    }
    m_entries.append({local, remote});
    if (changed)
        *changed = true;
    return okay();
}

QString ReverseTable::target(const QString &local) const
{
    for (const auto &entry : m_entries) {
        if (entry.first == local)
            return entry.second;
    }
    return {};
}

QByteArray ReverseTable::fail(const QString &message)
{
    return "FAIL" + lengthPrefixed(message.toUtf8());
}

QByteArray ReverseTable::lengthPrefixed(const QByteArray &text)
{
    return QByteArray::number(text.size(), 16).rightJustified(4, '0') + text;
}
