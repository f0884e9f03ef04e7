#include "shellline.h"

QList<ShellLine::Command> ShellLine::parse(const QString &line, bool *ok)
{
    QList<Command> commands;
    Command current;
    QString word;
    bool inWord = false;
    QChar quote;
    bool valid = true;

    auto endWord = [&] {
        if (inWord)
            current.words.append(word);
        word.clear();
        inWord = false;
    };
    auto endCommand = [&](const QString &nextJoiner) {
        endWord();
        if (!current.words.isEmpty())
            commands.append(current);
        current = Command();
        current.joiner = nextJoiner;
    };

    for (int i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        if (!quote.isNull()) {
            if (c == quote) {
                quote = QChar();
            } else if (quote == '"' && c == '\\' && i + 1 < line.size()
                       && QString("\"\\$`").contains(line.at(i + 1))) {
                word += line.at(++i);
            } else {
                word += c;
            }
            continue;
        }
        if (c == '\'' || c == '"') {
            quote = c;
            inWord = true;
        } else if (c == '\\' && i + 1 < line.size()) {
            word += line.at(++i);
            inWord = true;
        } else if (c == ';') {
            endCommand(";");
        } else if (c == '&' && i + 1 < line.size() && line.at(i + 1) == '&') {
            ++i;
            endCommand("&&");
        } else if (c == '|' && i + 1 < line.size() && line.at(i + 1) == '|') {
            ++i;
            endCommand("||");
        } else if (c.isSpace()) {
            endWord();
        } else {
            word += c;
            inWord = true;
        }
    }
    if (!quote.isNull())
        valid = false;
    endCommand(QString());
    if (ok)
        *ok = valid;
    return commands;
}
