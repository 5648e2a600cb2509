// SPDX-License-Identifier: GPL-3.0-or-later
// The rules of the house about includes, checked over all files of src/: no circle, and no layer knows one above it.
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

#include <ostream>

void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace {

/// Which files of ours a file includes; both are named from src/.
using Includes = QMap<QString, QStringList>;

QStringList includesIn(const QString &text)
{
    static const QRegularExpression line(QStringLiteral("^[ \\t]*#[ \\t]*include[ \\t]*\"([^\"]+)\""),
                                         QRegularExpression::MultilineOption);
    QStringList names;
    for (auto all = line.globalMatch(text); all.hasNext();) names.append(all.next().captured(1));
    return names;
}

Includes includesBelow(const QString &folder)
{
    Includes files;
    QDirIterator walk(folder, {QStringLiteral("*.h"), QStringLiteral("*.cpp"), QStringLiteral("*.c")}, QDir::Files,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        QFile file(walk.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
        files.insert(QDir(folder).relativeFilePath(file.fileName()), includesIn(QString::fromUtf8(file.readAll())));
    }
    return files;
}

// -- layers -----------------------------------------------------------------------------------------------------------

struct Rule
{
    QStringList files;     ///< for files whose names begin with one of these
    QStringList allowed;   ///< only what begins with one of these may be included; empty for anything ...
    QStringList forbidden; ///< ... but what begins with one of these
};

const QList<Rule> &rules()
{
    static const QList<Rule> all = [] {
        const auto texts = [](const char *words) { return QString::fromLatin1(words).split(u' ', Qt::SkipEmptyParts); };
        return QList<Rule>{
            {texts("engine/"), texts("engine/"), {}},
            {texts("foundation/"), texts("foundation/"), {}},
            {texts("server/Core/"), texts("server/Core/"), {}},
            {texts("server/WebDAV/"), texts("server/WebDAV/ server/Core/"), {}},
            {texts("library/ organising/ conversion/ export/ import/ editor/ screenplay/"), {}, texts("server/ cli/ desktop/")},
            {texts("server/"), {}, texts("cli/ desktop/")},
            {texts("cli/"), {}, texts("desktop/")},
            {texts("desktop/"), {}, texts("cli/")},
        };
    }();
    return all;
}

bool beginsWithOne(const QString &name, const QStringList &beginnings)
{
    return std::ranges::any_of(beginnings, [&](const QString &beginning) { return name.startsWith(beginning); });
}

QStringList layerBreaks(const Includes &files)
{
    QStringList breaks;
    for (auto file = files.begin(); file != files.end(); ++file)
        for (const Rule &rule : rules()) {
            if (!beginsWithOne(file.key(), rule.files)) continue;
            for (const QString &name : file.value())
                if ((!rule.allowed.isEmpty() && !beginsWithOne(name, rule.allowed)) ||
                    beginsWithOne(name, rule.forbidden))
                    breaks.append(file.key() + QStringLiteral(" includes ") + name);
        }
    return breaks;
}

// Every folder below src/ falls under some rule, so that a new one cannot slip in unnoticed.
QStringList filesWithoutRule(const Includes &files)
{
    QStringList without;
    for (const QString &name : files.keys())
        if (std::ranges::none_of(rules(), [&](const Rule &rule) { return beginsWithOne(name, rule.files); }))
            without.append(name);
    return without;
}

// -- circles ----------------------------------------------------------------------------------------------------------

class CircleSearch
{
public:
    explicit CircleSearch(const Includes &files)
        : m_files(files)
    {}

    /// "a.h b.h a.h", or an empty text.
    QString run()
    {
        for (const QString &name : m_files.keys())
            if (const QString circle = visit(name); !circle.isEmpty()) return circle;
        return {};
    }

private:
    QString visit(const QString &name)
    {
        if (const qsizetype start = m_way.indexOf(name); start >= 0)
            return (m_way.mid(start) + QStringList{name}).join(u' ');
        if (m_done.contains(name)) return {};
        m_way.append(name);
        for (const QString &next : m_files.value(name))
            if (const QString circle = visit(next); !circle.isEmpty()) return circle;
        m_way.removeLast();
        m_done.insert(name);
        return {};
    }

    const Includes &m_files;
    QStringList m_way;
    QSet<QString> m_done;
};

Includes made(std::initializer_list<std::pair<const char *, const char *>> rows)
{
    Includes files;
    for (const auto &[name, text] : rows)
        files.insert(QString::fromLatin1(name), includesIn(QString::fromLatin1(text)));
    return files;
}

} // namespace

TEST(Includes, ofTheSourcesKeepTheRules)
{
    const Includes files = includesBelow(QStringLiteral(TOMELET_SOURCE_DIR "/src"));
    EXPECT_GT(files.size(), 150) << "the sources were not found";
    EXPECT_EQ(layerBreaks(files).join(u'\n'), QString());
    EXPECT_EQ(filesWithoutRule(files).join(u'\n'), QString());
    EXPECT_EQ(CircleSearch(files).run(), QString());
}

TEST(Includes, areWrittenFromTheRootOfTheSources)
{
    // A file itself may be generated at build time, its folder is always there.
    const QDir sources(QStringLiteral(TOMELET_SOURCE_DIR "/src"));
    const Includes files = includesBelow(sources.path());
    QStringList elsewhere;
    for (auto file = files.begin(); file != files.end(); ++file)
        for (const QString &name : file.value())
            if (!name.contains(u'/') || name.contains(u"..") || !sources.exists(name.section(u'/', 0, -2)))
                elsewhere.append(file.key() + QStringLiteral(" includes ") + name);
    EXPECT_EQ(elsewhere.join(u'\n'), QString());
}

TEST(Includes, everyKindOfLayerBreakIsNoticed)
{
    const std::pair<const char *, const char *> breaks[] = {
        {"engine/token.h", "#include \"foundation/Range.h\"\n"},
        {"foundation/Log.cpp", "#include \"library/Root.h\"\n"},
        {"foundation/Log.cpp", "#include \"engine/d_string.h\"\n"},
        {"server/Core/HTTPServer.cpp", "#include \"foundation/Log.h\"\n"},
        {"server/WebDAV/DAVConnection.cpp", "#include \"library/Root.h\"\n"},
        {"server/Core/HTTPServer.cpp", "#include \"server/WebDAV/DAVConnection.h\"\n"},
        {"library/Root.cpp", "#include <QDir>\n  #  include \"desktop/MainWindow.h\"\n"},
        {"organising/DocumentList.cpp", "#include\t\"server/ServerControl.h\"\n"},
        {"editor/Editing.cpp", "#include \"cli/Items.h\"\n"},
        {"server/ServerControl.cpp", "#include \"cli/Items.h\"\n"},
        {"desktop/main.cpp", "#include \"cli/Items.h\"\n"},
        {"cli/main.cpp", "#include \"desktop/Theme.h\"\n"},
    };
    for (const auto &[name, text] : breaks)
        EXPECT_EQ(layerBreaks(made({{name, text}})).size(), 1) << name << ": " << text;
    EXPECT_EQ(filesWithoutRule(made({{"misc/Helper.h", ""}})), QStringList{QStringLiteral("misc/Helper.h")});
}

TEST(Includes, whatTheRulesAllowIsNoBreak)
{
    EXPECT_EQ(layerBreaks(made({
                  {"server/WebDAV/DAVConnection.cpp", "#include \"server/Core/HTTPConnection.h\"\n"},
                  {"server/ServerControl.cpp", "#include \"library/Root.h\"\n#include \"server/WebDAV/DAV.h\"\n"},
                  {"conversion/Html.cpp", "#include \"engine/mmd.h\"\n// #include \"cli/Items.h\"\n"},
                  {"foundation/Log.cpp", "#include <library.h>\n"},
              })),
              QStringList());
}

TEST(Includes, circlesOfEveryLengthAreNoticed)
{
    EXPECT_EQ(CircleSearch(made({{"a/a.h", "#include \"a/a.h\"\n"}})).run(), QStringLiteral("a/a.h a/a.h"));
    EXPECT_EQ(CircleSearch(made({{"a/a.h", "#include \"a/b.h\"\n"},
                                 {"a/b.h", "#include \"a/d.h\"\n#include \"a/c.h\"\n"},
                                 {"a/c.h", "#include \"a/b.h\"\n"},
                                 {"a/d.h", ""}}))
                  .run(),
              QStringLiteral("a/b.h a/c.h a/b.h"));
    EXPECT_EQ(CircleSearch(made({{"a/a.h", "#include \"a/b.h\"\n#include \"a/c.h\"\n"},
                                 {"a/b.h", "#include \"a/c.h\"\n"},
                                 {"a/c.h", ""}}))
                  .run(),
              QString());
}
