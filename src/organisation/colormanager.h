#pragma once

#include <QColor>
#include <QObject>


// The one dark theme with green accents that every screen binds to. Constant: nothing to switch or save.
class ColorManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QColor primaryGreen READ primaryGreen CONSTANT)
    Q_PROPERTY(QColor primaryLightGreen READ primaryLightGreen CONSTANT)
    Q_PROPERTY(QColor primaryDarkGreen READ primaryDarkGreen CONSTANT)
    Q_PROPERTY(QColor backgroundBlack READ backgroundBlack CONSTANT)
    Q_PROPERTY(QColor backgroundDarkGray READ backgroundDarkGray CONSTANT)
    Q_PROPERTY(QColor backgroundPureBlack READ backgroundPureBlack CONSTANT)
    Q_PROPERTY(QColor backgroundBlackGreen READ backgroundBlackGreen CONSTANT)
    Q_PROPERTY(QColor backgroundLightGreen READ backgroundLightGreen CONSTANT)
    Q_PROPERTY(QColor textWhite READ textWhite CONSTANT)
    Q_PROPERTY(QColor textGreen READ textGreen CONSTANT)
    Q_PROPERTY(QColor textGray READ textGray CONSTANT)
    Q_PROPERTY(QColor textRed READ textRed CONSTANT)
    Q_PROPERTY(QColor textYellow READ textYellow CONSTANT)
    Q_PROPERTY(QColor textBlack READ textBlack CONSTANT)
    Q_PROPERTY(QColor textBlackGreen READ textBlackGreen CONSTANT)
    Q_PROPERTY(QColor borderDarkGreen READ borderDarkGreen CONSTANT)
    Q_PROPERTY(QColor borderLightGreen READ borderLightGreen CONSTANT)
    Q_PROPERTY(QColor borderDarkGray READ borderDarkGray CONSTANT)
    Q_PROPERTY(QColor success READ success CONSTANT)
    Q_PROPERTY(QColor warning READ warning CONSTANT)
    Q_PROPERTY(QColor error READ error CONSTANT)
    Q_PROPERTY(QColor danger READ danger CONSTANT)
    Q_PROPERTY(QColor info READ info CONSTANT)

public:
    static ColorManager *instance();

    QColor primaryGreen() const { return m_primaryGreen; }
    QColor primaryLightGreen() const { return m_primaryLightGreen; }
    QColor primaryDarkGreen() const { return m_primaryDarkGreen; }
    QColor backgroundBlack() const { return m_backgroundBlack; }
    QColor backgroundDarkGray() const { return m_backgroundDarkGray; }
    QColor backgroundPureBlack() const { return m_backgroundPureBlack; }
    QColor backgroundBlackGreen() const { return m_backgroundBlackGreen; }
    QColor backgroundLightGreen() const { return m_backgroundLightGreen; }
    QColor textWhite() const { return m_textWhite; }
    QColor textGreen() const { return m_textGreen; }
    QColor textGray() const { return m_textGray; }
    QColor textRed() const { return m_textRed; }
    QColor textYellow() const { return m_textYellow; }
    QColor textBlack() const { return m_textBlack; }
    QColor textBlackGreen() const { return m_textBlackGreen; }
    QColor borderDarkGreen() const { return m_borderDarkGreen; }
    QColor borderLightGreen() const { return m_borderLightGreen; }
    QColor borderDarkGray() const { return m_borderDarkGray; }
    QColor success() const { return m_success; }
    QColor warning() const { return m_warning; }
    QColor error() const { return m_error; }
    QColor danger() const { return m_danger; }
    QColor info() const { return m_info; }

private:
    ColorManager() = default;

    QColor m_primaryGreen{QStringLiteral("#00FF7F")};
    QColor m_primaryLightGreen{QStringLiteral("#39FF8F")};
    QColor m_primaryDarkGreen{QStringLiteral("#00CC66")};
    QColor m_backgroundBlack{QStringLiteral("#0A0A0A")};
    QColor m_backgroundDarkGray{QStringLiteral("#1A1A1A")};
    QColor m_backgroundPureBlack{QStringLiteral("#000000")};
    QColor m_backgroundBlackGreen{QStringLiteral("#003300")};
    QColor m_backgroundLightGreen{QStringLiteral("#00FF7F")};
    QColor m_textWhite{QStringLiteral("#F3F3F3")};
    QColor m_textGreen{QStringLiteral("#00FF7F")};
    QColor m_textGray{QStringLiteral("#666666")};
    QColor m_textRed{QStringLiteral("#FF4444")};
    QColor m_textYellow{QStringLiteral("#FFCD44")};
    QColor m_textBlack{QStringLiteral("#000000")};
    QColor m_textBlackGreen{QStringLiteral("#07c80e")};
    QColor m_borderDarkGreen{QStringLiteral("#04AD31")};
    QColor m_borderLightGreen{QStringLiteral("#3ec237")};
    QColor m_borderDarkGray{QStringLiteral("#333333")};
    QColor m_success{QStringLiteral("#04AD31")};
    QColor m_warning{QStringLiteral("#FFD700")};
    QColor m_error{QStringLiteral("#FF3333")};
    QColor m_danger{QStringLiteral("#FF3333")};
    QColor m_info{QStringLiteral("#333333")};
};
