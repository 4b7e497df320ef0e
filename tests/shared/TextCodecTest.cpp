#include "shared/TextCodec.h"
#include "support/TestSupport.h"

namespace {

TEST(TextCodec, Windows1252BothWays) {
    const struct {
        const char16_t* text;
        QByteArray bytes;
    } cases[] = {
        {u"plain", "plain"},
        {u"caf\u00e9 \u00fc\u00df", "caf\xe9 \xfc\xdf"},
        {u"\u20ac \u201cq\u201d \u2013 \u0160", "\x80 \x93q\x94 \x96 \x8a"}, // the 0x80-0x9F block
        {u"tab\tCR\r\n", "tab\tCR\r\n"},
    };
    for (const auto& c : cases) {
        const QString text = QString::fromUtf16(c.text);
        EXPECT_EQ(TextCodec::ToWindows1252(text), c.bytes) << text.toStdString();
        EXPECT_EQ(TextCodec::FromWindows1252(c.bytes), text);
    }
}

TEST(TextCodec, CharactersOutsideTheCodePageBecomeOneQuestionMarkEach) {
    EXPECT_EQ(TextCodec::ToWindows1252(QString::fromUtf16(u"a\u4e2db\u0394c")),
              QByteArray("a?b?c"));
    EXPECT_EQ(TextCodec::ToWindows1252(QString::fromUtf16(u"x\U0001F600y")), QByteArray("x?y"));
    EXPECT_EQ(TextCodec::ToWindows1252(QString(QChar(0x1A))), QByteArray("\x1A"));
}

} // namespace
