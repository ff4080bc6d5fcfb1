#include "maintenance/uninstall/DataMatch.h"
#include "support/Test.h"

namespace {

const QString certain;
const QString alike = u"仅名称相似，可能属于其他应用"_s;
const QString loose = u"名称与标识不完全一致，可能属于其他应用"_s;

DataSubject subject(const QString &name, const QString &identifier, const QStringList &others = {})
{
    return {name, identifier, others, {u"/opt/Velbrix/velbrix"_s, u"Velbrix"_s, u"org.own.tool"_s}};
}

} // namespace

class DataMatchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsBroadlyAndTicksStrictly()
    {
        using enum MatchReason;
        const auto row = [](const char *title, const DataSubject &whose, const QString &entry,
                            std::optional<MatchReason> reason, const QString &caution = {}) {
            const auto match = DataMatcher(whose).match(entry, false);
            QVERIFY2(match.has_value() == reason.has_value(), title);
            if (match)
                QVERIFY2(match->reason == *reason && match->caution == caution && !match->why.isEmpty(),
                         title);
        };

        const DataSubject note =
            subject(u"Note"_s, u"org.Acme.Note"_s, {u"org.acme.note.pro"_s, u"org.acme"_s});
        row("identifier", note, u"ORG.acme.note.plist"_s, identifier);
        row("of a group", note, u"group.org.acme.note"_s, identifier);
        row("a part of it", note, u"org.acme.note.Helper"_s, identifier);
        row("vendor prefix", note, u"com.Note.settings"_s, vendorPrefix, alike);
        row("name", note, u"Evernote"_s, name, alike);
        row("stranger", note, u"org.acme.other"_s, std::nullopt);
        row("another's longer identifier", note, u"org.acme.note.pro.plist"_s, identifier,
            u"可能属于另一个应用：org.acme.note.pro"_s);
        row("longer word", note, u"org.acme.notepad"_s, identifier, loose);
        row("with an ending", note, u"org.acme.note-beta"_s, identifier, loose);

        row("another's identifier elsewhere in it",
            subject(u"Note"_s, u"org.acme.note"_s, {u"com.zed.editor"_s}), u"com.zed.editor.org.acme.note"_s,
            identifier, u"可能属于另一个应用：com.zed.editor"_s);
        row("two of the same identifier", subject(u"Note"_s, u"org.acme.note"_s, {u"Org.Acme.Note"_s}),
            u"org.acme.note"_s, identifier, u"另一个已安装的应用使用相同的标识"_s);
        row("another's shorter identifier in ours",
            subject(u"Pro"_s, u"org.acme.note.pro"_s, {u"org.acme.note"_s}), u"org.acme.note.pro.plist"_s,
            identifier);
        row("a short one is no part of a word", subject(u"Note"_s, u"org.acme.note"_s, {u"ac"_s, u"e"_s}),
            u"org.acme.note"_s, identifier);
        row("a short one is a word", subject(u"Note"_s, u"org.acme.note"_s, {u"vi"_s}), u"vi.org.acme.note"_s,
            identifier, u"可能属于另一个应用：vi"_s);

        row("a vendor for an identifier", subject(u"Evil"_s, u"com.apple"_s), u"com.apple.finder.plist"_s,
            identifier, loose);
        row("a vendor's own", subject(u"Evil"_s, u"com.apple"_s), u"com.apple.plist"_s, identifier);
        row("a word for an identifier", subject(u"Code"_s, u"code"_s), u"claude-code"_s, identifier, loose);
        row("the word itself", subject(u"Gimp"_s, u"gimp"_s), u"GIMP"_s, identifier);
        row("the word's file", subject(u"Gimp"_s, u"gimp"_s), u".gimp.conf"_s, identifier);
        row("a folder of all", subject(u"Fonts"_s, u"fonts"_s), u"fonts"_s, identifier,
            u"许多应用共用的文件夹"_s);
        row("a file in a folder of all", subject(u"Fonts"_s, u"fonts"_s), u"fonts.conf"_s, identifier);
        row("short identifier", subject(u"VLC media player"_s, u"vlc"_s), u"vlc"_s, identifier,
            u"匹配的文字「vlc」太短"_s);
        row("one letter", subject(u"Dubious"_s, u"."_s), u"org.gnome"_s, identifier,
            u"匹配的文字「.」太短"_s);
        row("short name", subject(u"R"_s, u""_s), u"Trash"_s, name, u"匹配的文字「r」太短"_s);

        row("no identifier, no name", subject(u""_s, u""_s), u"com..anything"_s, std::nullopt);
        row("blanks for a name", subject(u" "_s, u"\t"_s), u"com. anything\t"_s, std::nullopt);
        row("no identifier", subject(u"Paint"_s, u""_s), u"Paint"_s, name, alike);
        row("composed otherwise", subject(u"Café"_s, u""_s), u"cafe\u0301 data"_s, name, alike);
        row("our own", subject(u"Vel"_s, u"org.own"_s), u"velbrix"_s, std::nullopt);
        row("our identifier", subject(u"Own"_s, u"org.own"_s), u"org.own.tool.plist"_s, std::nullopt);
    }

    void saysWhyAndThatALinkLeadsElsewhere()
    {
        const DataMatcher matcher(subject(u"Note"_s, u"org.acme.note"_s));
        QCOMPARE(matcher.match(u"org.acme.note"_s, true)->caution, u"是指向别处的链接"_s);
        QVERIFY(!matcher.match(u"other"_s, true));
        QCOMPARE(matcher.match(u"com.note"_s, false)->why, u"名称包含 com.note"_s);
    }
};

QTEST_GUILESS_MAIN(DataMatchTest)
#include "DataMatchTest.moc"
