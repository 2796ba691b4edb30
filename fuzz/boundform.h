#pragma once

#include <formkit/properties.h>

#include <QPointer>
#include <QWidget>

#include <functional>
#include <utility>

class ComboBox;
class EmbeddedHost;
class FormSelector;

// A form of every kind of control, tied by one hub, over a small host. Two fields each bear the
// names of the price, the date, the comment and the note; the details by board have two pages.
class BoundForm : public QWidget
{
    Q_OBJECT

public:
    // `file` is the database of an edition of the reference data, but for its number.
    BoundForm(EmbeddedHost *host, const QString &file);

    Properties &hub() { return m_hub; }
    // A control by its name; null for one that is destroyed.
    QWidget *control(const QString &name) const { return m_controls.value(name); }
    // What a control shows: its text, or "x" where it is checked.
    QString shown(const QString &name) const;
    QStringList listed(const QString &box) const;
    // The page of the details that is shown; empty for none.
    QString page() const;
    // Whether an edit took place since the last call, also one that left the text as it was.
    bool takeEdited() { return std::exchange(m_edited, false); }
    // The control that has the focus.
    QString focused();

    bool load(int edition);
    void refresh(const QString &box);
    void destroy(const QString &name) { delete m_controls.take(name); }
    // Makes a destroyed control again, and binds it.
    void create(const QString &name);
    void setLocale(const QString &locale);

    void focus(const QString &name, Qt::FocusReason reason) const;
    // Closes the pop-up that comes with it, if it is not to stay.
    void press(const QString &name, int key, const QString &text, bool stays = false) const;
    void paste(const QString &name, const QString &text) const;
    void choose(const QString &box, int row) const;
    // Chooses a row of the list that has dropped down below a typed text, the first being 1.
    void complete(const QString &box, int place) const;
    void pick(const QString &name, const QDate &day) const;

private:
    using Maker = std::function<QWidget *(QWidget *parent)>;
    QWidget *make(const QString &name);
    QWidget *makePage(const QString &name);
    template <typename Control>
    Control *add(const QString &name, Control *control, const QString &field);
    ComboBox *box(const QString &name) const;

    EmbeddedHost *m_host;
    const QString m_file;
    QMap<QString, QPointer<QWidget>> m_controls;
    FormSelector *m_details = nullptr;
    QString m_locale;
    bool m_edited = false;
    Properties m_hub;
};
