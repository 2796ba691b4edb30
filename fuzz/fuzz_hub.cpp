// Forms and hubs that are bound, written, edited, unbound and destroyed in any order, also from
// inside the hub's own notifications: nothing dead is touched, and what is bound both ways shows
// what the hub holds.

#include <formkit/checkbox.h>
#include <formkit/lineedit.h>
#include <formkit/properties.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QVector>

#include <array>
#include <memory>

namespace {

class Play
{
public:
    Play(const uint8_t *data, size_t size) : m_input(data, size) { makeHub(); }
    ~Play()
    {
        m_meddling = false;
        for (const Slot &slot : m_slots)
            delete slot.control;
    }

    void run()
    {
        while (m_input.remaining_bytes() > 0) {
            act();
            check();
        }
    }

private:
    struct Slot
    {
        QPointer<QWidget> control;
        QString name;       // that it is bound under; empty for none
        bool heard = false; // whether it surely is bound in both directions
    };

    void makeHub()
    {
        for (Slot &slot : m_slots) {
            slot.name.clear();
            slot.heard = false;
        }
        m_hub = std::make_unique<Properties>();
        QObject::connect(m_hub.get(), &Properties::hasChanged, m_hub.get(), [this] { meddle(); });
    }

    // Acts from inside a notification; of a control, if one is given.
    void meddle(QWidget *reporting = nullptr)
    {
        if (m_reporting.size() < 4 && m_meddling && m_input.remaining_bytes() > 0) {
            m_reporting.append(reporting);
            act();
            m_reporting.removeLast();
        }
    }

    // Qt's own controls do not survive being destroyed inside their own signals.
    void destroy(Slot &slot)
    {
        if (slot.control && !m_reporting.contains(slot.control))
            delete slot.control;
    }

    QString anyName() { return QString(QChar(m_input.ConsumeIntegralInRange<char>('A', 'C'))); }
    QString anyText() { return QString(QChar(m_input.ConsumeIntegralInRange<char>('x', 'z'))); }

    void act()
    {
        const int action = m_input.ConsumeIntegralInRange(0, 12);
        Slot &slot = m_slots.at(m_input.ConsumeIntegralInRange<size_t>(0, m_slots.size() - 1));
        // What happens to the bindings inside a notification leaves open how its call ends.
        if (!m_reporting.isEmpty() && action > 4) {
            for (Slot &other : m_slots)
                other.heard = false;
        }
        if (action <= 1)
            m_hub->setValue(anyName(), anyText());
        else if (action == 2)
            press(slot);
        else if (action == 3)
            setTwo();
        else if (action == 4)
            QCoreApplication::processEvents();
        else if (action == 5)
            make(slot);
        else if (action == 6)
            destroy(slot);
        else if (action == 7)
            bind(slot, false);
        else if (action == 8)
            bind(slot, true);
        else if (action == 9)
            unbind(slot, false);
        else if (action == 10)
            unbind(slot, true);
        else if (action == 11)
            m_meddling = !m_meddling;
        else if (m_reporting.isEmpty() || m_input.ConsumeBool())
            makeHub();
    }

    void press(const Slot &slot)
    {
        if (!slot.control)
            return;
        QWidget *control = slot.control;
        m_reporting.append(control);
        QKeyEvent press(QEvent::KeyPress, Qt::Key_X, {}, anyText());
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_X, {});
        QCoreApplication::sendEvent(control, &press);
        QCoreApplication::sendEvent(control, &release);
        m_reporting.removeLast();
    }

    void setTwo()
    {
        Values values;
        values.insert(anyName(), anyText());
        values.insert(anyName(), anyText());
        m_hub->setValues(values);
    }

    void make(Slot &slot)
    {
        destroy(slot);
        if (slot.control)
            return;
        slot = {};
        if (m_input.ConsumeIntegralInRange(0, 3) == 0) {
            auto *box = new CheckBox;
            box->setProperty("value_checked", "x");
            box->setProperty("value_unchecked", "y");
            QObject::connect(box, &CheckBox::changedValue, box, [this, box] { meddle(box); });
            slot.control = box;
        } else {
            auto *edit = new LineEdit;
            QObject::connect(edit, &LineEdit::textChanged, edit, [this, edit] { meddle(edit); });
            slot.control = edit;
        }
    }

    void bind(Slot &slot, bool byField)
    {
        if (!slot.control)
            return;
        const QPointer<QWidget> control = slot.control;
        const QString name = slot.name.isEmpty() ? anyName() : slot.name;
        const Properties *hub = m_hub.get();
        slot.name = name;
        slot.heard = true;
        control->setProperty("field", name);
        if (byField)
            m_hub->connectAll(control);
        else
            m_hub->connectOne(name, control, "Value");
        if (m_hub.get() != hub || slot.control != control)
            slot.heard = false;
    }

    void unbind(Slot &slot, bool all)
    {
        if (!slot.control || slot.name.isEmpty())
            return;
        slot.heard = false;
        if (all)
            m_hub->disconnectAll(slot.control);
        else
            m_hub->disconnectOne(slot.name, slot.control, "Value");
    }

    void check() const
    {
        const Values values = m_hub->values();
        for (const Slot &slot : m_slots) {
            const auto *edit = qobject_cast<LineEdit *>(slot.control);
            if (edit && slot.heard && edit->getValue() != values[slot.name])
                std::abort();
        }
    }

    FuzzedDataProvider m_input;
    std::array<Slot, 5> m_slots;
    std::unique_ptr<Properties> m_hub;
    QVector<QWidget *> m_reporting;
    bool m_meddling = true;
};

void ignoreMessage(QtMsgType /*type*/, const QMessageLogContext & /*context*/,
                   const QString & /*text*/)
{
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication app(*argc, *argv);
    qInstallMessageHandler(ignoreMessage);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Play(data, std::min<size_t>(size, 400)).run();
    return 0;
}
