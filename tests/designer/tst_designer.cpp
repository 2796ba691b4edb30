// SPDX-License-Identifier: BSD-3-Clause
#include "support/keys.h"
#include "support/stricttest.h"

#include <formkit/formselector.h>
#include <formkit/properties.h>

#include <QAbstractButton>
#include <QAction>
#include <QDesignerComponents>
#include <QDesignerContainerExtension>
#include <QDesignerFormEditorInterface>
#include <QDesignerFormWindowInterface>
#include <QDesignerFormWindowManagerInterface>
#include <QDesignerIntegration>
#include <QDesignerPropertyEditorInterface>
#include <QDesignerTaskMenuExtension>
#include <QExtensionManager>
#include <QInputDialog>
#include <QUiLoader>
#include <QUndoStack>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Without the sizes: a PartnerSelectorBox takes that of its contents.
QString withoutSizes(QString form)
{
    return form.remove(QRegularExpression("<(width|height)>\\d+</\\w+>"));
}

// The form of every control, which Qt Designer itself has written, made by the loader.
QWidget *loadedForm()
{
    QUiLoader loader;
    loader.addPluginPath(QStringLiteral(PLUGINS "/designer"));
    QFile file(QStringLiteral(ALL_CONTROLS));
    return file.open(QIODevice::ReadOnly) ? loader.load(&file) : nullptr;
}

} // namespace

class DesignerTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void controls();
    void forms();
    void designing();
};

// The plug-in has every widget of the library, and what it says of each one is true.
void DesignerTest::controls()
{
    QStringList widgets;
    const QRegularExpression widget(
        "class FORMKIT_EXPORT (\\w+) : public "
        "(?:Q\\w*(?:Edit|B[uo]\\w+|Label|Widget)|\\w+Box|\\w+Editor|\\w+Entry)\\b");
    for (const QFileInfo &header : QDir(SOURCES "/formkit").entryInfoList({"*.h"})) {
        const auto match = widget.match(contentOf(header.filePath()));
        const QString name = match.captured(1);
        if (match.hasMatch() && name != "SelectorBox" && !name.endsWith("Entry"))
            widgets << name;
    }
    QPluginLoader plugin(PLUGINS "/designer/formkitdesigner");
    const auto *collection =
        qobject_cast<QDesignerCustomWidgetCollectionInterface *>(plugin.instance());
    QVERIFY2(collection, qPrintable(plugin.errorString()));
    for (QDesignerCustomWidgetInterface *control : collection->customWidgets()) {
        QVERIFY2(widgets.removeOne(control->name()), qPrintable(control->name()));
        QVERIFY(control->group().startsWith("formkit") && !control->toolTip().isEmpty());
        QVERIFY(!control->whatsThis().isEmpty());
        const QImage icon = control->icon().pixmap(22).toImage();
        QVERIFY2(icon != QImage(icon.size(), icon.format()) && !icon.isNull(),
                 qPrintable(control->name()));
    }
    QCOMPARE(widgets, QStringList());
}

// A form of every control works from its file alone: names, texts of states, pages by board.
void DesignerTest::forms()
{
    expectWarning("ICore::table: no host is installed: lists stay empty");
    const QScopedPointer<QWidget> form(loadedForm());
    QVERIFY(form);
    form->show();
    Properties hub;
    QVERIFY(hub.connectAll(form.data()));
    auto *selector = form->findChild<FormSelector *>();
    selector->setHub(&hub);
    const auto child = [&](const char *name) { return form->findChild<QWidget *>(name); };
    const auto held = [&](const char *name) { return hub.values().value(name).toString(); };

    keys::type(child("lineEdit"), "note");
    keys::type(child("numberEditor"), "1");
    keys::press(child("numberEditor"), "Up");
    keys::type(child("quantityEditor"), "20");
    for (const char *button : {"checkBox", "radioButton", "pushButtonSend"})
        qobject_cast<QAbstractButton *>(child(button))->click();
    QCOMPARE((QStringList{held("Comment"), held("Price"), held("Quantity"), held("Hidden"),
                          held("Side"), held("Action")}),
             (QStringList{"note", "1.5", "20", "Y", "B", "place"}));
    QVERIFY(!child("page")->isVisible() && !child("page_2")->isVisible());
    selector->setWidget({1, 8});
    QVERIFY(child("page")->isVisible() && !child("page_2")->isVisible());
    keys::type(child("numberEditor_2"), "7");
    selector->setWidget({2, 3});
    QVERIFY(!child("page")->isVisible() && child("page_2")->isVisible());
    QCOMPARE(child("lineEdit_2")->property("Value"), QVariant("7"));
}

// In Designer's form window: pages are inserted and shown, texts are set from the menu, and all
// of it can be undone.
void DesignerTest::designing()
{
    QCoreApplication::addLibraryPath(PLUGINS);
    QDesignerComponents::initializeResources();
    const QScopedPointer<QDesignerFormEditorInterface> core(
        QDesignerComponents::createFormEditor(nullptr));
    const QScopedPointer<QDesignerPropertyEditorInterface> editor(
        QDesignerComponents::createPropertyEditor(core.data(), nullptr));
    core->setPropertyEditor(editor.data());
    new QDesignerIntegration(core.data(), core.data());
    QDesignerComponents::initializePlugins(core.data());
    const QScopedPointer<QDesignerFormWindowInterface> form(
        core->formWindowManager()->createFormWindow());
    QVERIFY(form->setContents(contentOf(ALL_CONTROLS)));
    QCOMPARE(withoutSizes(form->contents()), withoutSizes(contentOf(ALL_CONTROLS)));

    const auto child = [&](const char *name) { return form->findChild<QWidget *>(name); };
    QExtensionManager *manager = core->extensionManager();
    const auto trigger = [&](const char *widget, const char *title, const char *text = nullptr) {
        if (text) {
            QTimer::singleShot(0, this, [text] {
                auto *dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
                dialog->setTextValue(text);
                dialog->accept();
            });
        }
        auto *menu = qt_extension<QDesignerTaskMenuExtension *>(manager, child(widget));
        for (QAction *action : menu->taskActions()) {
            if (action->text() == title)
                return action->trigger();
        }
        QFAIL(title);
    };
    auto *pages = qt_extension<QDesignerContainerExtension *>(manager, child("formSelector"));
    QCOMPARE(pages->count(), 2);
    QCOMPARE(pages->widget(pages->currentIndex()), child("page"));
    trigger("formSelector", "Previous Page");
    QCOMPARE(pages->currentIndex(), 1);
    child("formSelector")->setProperty("StockId", "5");
    QCOMPARE(pages->currentIndex(), 1);

    const QString before = withoutSizes(form->contents());
    trigger("formSelector", "Boards of the Page...", "4,4");
    QVERIFY(form->contents().contains("<cstring>4,4</cstring>"));
    trigger("numberEditor", "Name of the Value...", "");
    QVERIFY(!child("numberEditor")->property("field").isValid());
    QCOMPARE(form->contents().count("\"field\""), before.count("\"field\"") - 1);
    trigger("partnerSelectorBox", "Only Partners with a Client Code");
    QVERIFY(form->contents().contains("RiskAddress"));
    while (form->commandHistory()->canUndo())
        form->commandHistory()->undo();
    QCOMPARE(withoutSizes(form->contents()), before);
}

QTEST_MAIN(DesignerTest)
#include "tst_designer.moc"
