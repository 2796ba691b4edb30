// Plays random sequences of what users and programs do on a whole form against a plain model of
// it, and shrinks the first that fails; or plays the sequences of a file.

#include "formcontent.h"
#include "formsequence.h"

#include <embeddedhost/embeddedhost.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

QTextStream out(stdout);

// A sequence of the file: actions, a line each, under a name.
struct Named
{
    QString name;
    QVector<FormAction> actions;
};

// Sequences are parted by empty lines, '#' begins a comment. A line that is no action is kept as
// an action that fails.
bool readSequences(const QString &path, QVector<Named> *sequences)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    bool isOpen = false;
    for (const QString &line : QString::fromUtf8(file.readAll()).split('\n')) {
        if (line.startsWith('#'))
            continue;
        if (!isOpen && !line.isEmpty())
            sequences->append({line, {}});
        else if (!line.isEmpty())
            sequences->last().actions << FormAction::fromLine(line);
        isOpen = !line.isEmpty();
    }
    return !sequences->isEmpty();
}

int replay(FormSequence *player, const QString &path)
{
    QVector<Named> sequences;
    if (!readSequences(path, &sequences)) {
        out << path << " has no sequences\n";
        return 2;
    }
    int failures = 0;
    for (const Named &sequence : qAsConst(sequences)) {
        const QString fault = player->play(sequence.actions);
        if (fault.isEmpty())
            continue;
        ++failures;
        out << sequence.name << ": " << fault << '\n';
    }
    out << sequences.size() << " sequences replayed, " << failures << " failed\n";
    return failures ? 1 : 0;
}

int playAtRandom(FormSequence *player, unsigned seed, int sequences, int length, int seconds)
{
    QElapsedTimer clock;
    clock.start();
    int played = 0;
    for (; seconds > 0 ? clock.elapsed() < seconds * 1000LL : played < sequences; ++played) {
        std::mt19937 random(seed + unsigned(played));
        QVector<FormAction> actions;
        for (int i = 0; i < length; ++i)
            actions << FormAction::random(random);
        if (player->play(actions).isEmpty())
            continue;
        actions = player->shrunk(actions);
        out << "# " << player->play(actions).replace('\n', "\n# ") << "\nseed "
            << seed + unsigned(played) << '\n';
        for (const FormAction &action : qAsConst(actions))
            out << action.toLine() << '\n';
        return 1;
    }
    out << played << " sequences, " << player->actionsPlayed() << " actions, seeds from " << seed
        << '\n';
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    // The typed form of a date is that of this locale: dd.MM.yy.
    qputenv("LC_ALL", "de_DE.UTF-8");
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({{"seed", "The first random sequence.", "number", "1"},
                       {"sequences", "How many of them.", "number", "200"},
                       {"length", "Actions of each.", "number", "30"},
                       {"seconds", "Random sequences for so long, in place of a number.", "number"},
                       {"replay", "Play the sequences of a file.", "file"}});
    parser.process(app);

    const QTemporaryDir folder;
    const QString file = folder.filePath("edition");
    for (int edition = 0; edition < FormContent::Editions; ++edition) {
        if (!FormContent::writeDatabase(file + QString::number(edition), edition)) {
            out << "cannot write " << file << edition << '\n';
            return 2;
        }
    }
    EmbeddedHost host;
    ICore::install(&host);
    FormSequence player(&host, file);
    if (parser.isSet("replay"))
        return replay(&player, parser.value("replay"));
    return playAtRandom(&player, parser.value("seed").toUInt(), parser.value("sequences").toInt(),
                        parser.value("length").toInt(), parser.value("seconds").toInt());
}
