#include "cdialogshooter.h"

#include "hostwording.h"

#include "ilog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPointer>
#include <QTableWidget>

#include <algorithm>

namespace {

constexpr int kPollMilliseconds = 50;
// Long enough for a dialog's deferred refresh and first layout.
constexpr int kSettleMilliseconds = 250;

const QString kLibraryManager = QStringLiteral("DlgLayerLibMgr");
const QString kLibraryMerge = QStringLiteral("DlgLibraryMerge");

bool isDialog(const QWidget *widget, const QString &name)
{
    return widget
        && (QLatin1String(widget->metaObject()->className()) == name
            || widget->objectName() == name);
}

// Mouse events delivered to the widget under the point, as a user's click.
void click(QWidget *widget, const QPoint &pos, bool twice)
{
    QWidget *target = widget->childAt(pos);
    if (!target)
        target = widget;
    const QPointF local = target->mapFrom(widget, pos);
    const QPointF global = target->mapToGlobal(local);
    QPointer<QWidget> guard(target);
    auto send = [&](QEvent::Type type) {
        const Qt::MouseButtons buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton
                                                                            : Qt::LeftButton;
        QMouseEvent event(type, local, global, Qt::LeftButton, buttons, Qt::NoModifier);
        if (guard)
            QCoreApplication::sendEvent(guard, &event);
    };
    send(QEvent::MouseButtonPress);
    send(QEvent::MouseButtonRelease);
    if (twice) {
        send(QEvent::MouseButtonPress);
        send(QEvent::MouseButtonDblClick);
        send(QEvent::MouseButtonRelease);
    }
}

template<typename T>
T *child(QWidget *dialog, const char *name, QString *error)
{
    auto *found = dialog->findChild<T *>(QLatin1String(name));
    if (!found)
        *error = Wording("%1 has no %2.").arg(dialog->metaObject()->className(),
                                              QLatin1String(name));
    return found;
}

QString pressButton(QWidget *dialog, const char *name)
{
    QString error;
    if (auto *button = child<QAbstractButton>(dialog, name, &error))
        button->click();
    return error;
}

QString chooseLastRow(QWidget *dialog, const char *name)
{
    QString error;
    if (auto *combo = child<QComboBox>(dialog, name, &error))
        combo->setCurrentIndex(combo->count() - 1);
    return error;
}

bool inEditor(const QWidget *widget)
{
    for (; widget; widget = widget->parentWidget()) {
        if (widget->inherits("DlgLayerParamCut") || widget->inherits("DlgLayerParamSweep"))
            return true;
    }
    return false;
}

// The Temporary scheme, then a new value typed into the first field of the
// parameter editor on show, as a user edits a layer.
QString editParameter(QWidget *dialog)
{
    QString error;
    auto *schemes = child<QListWidget>(dialog, "listWidget_scheme", &error);
    if (!schemes)
        return error;
    schemes->setCurrentRow(2);
    const auto edits = dialog->findChildren<QLineEdit *>();
    for (QLineEdit *edit : edits) {
        if (!edit->isVisible() || !edit->isEnabled() || edit->isReadOnly() || !inEditor(edit))
            continue;
        const double value = edit->text().toDouble();
        const QString text = QString::number(value > 1 ? value - 1 : value + 1);
        edit->setFocus();
        edit->selectAll();
        for (const QChar c : text) {
            QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
            QCoreApplication::sendEvent(edit, &press);
        }
        // Leaving the field ends the edit; Return would press the default button.
        QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);
        QCoreApplication::sendEvent(edit, &leave);
        return QString();
    }
    return Wording("%1 shows no parameter to edit.").arg(kLibraryManager);
}

// A craft of the kind in the presets panel's craft list, clicked.
QString chooseCraft(QWidget *dialog, const QList<int> &crafts)
{
    QString error;
    auto *list = child<QListWidget>(dialog, "listWidget", &error);
    if (!list)
        return error;
    for (int row = 0; row < list->count(); ++row) {
        QListWidgetItem *item = list->item(row);
        if (!crafts.contains(item->data(Qt::UserRole).toInt()))
            continue;
        list->scrollToItem(item);
        click(list->viewport(), list->visualItemRect(item).center(), false);
        return QString();
    }
    return Wording("%1 offers no such craft.").arg(kLibraryManager);
}

} // namespace

CDialogShooter::CDialogShooter(QWidget *panel, const QString &dialog, const QString &file,
                               QObject *parent)
    : QObject(parent)
    , m_panel(panel)
    , m_file(file)
{
    m_poll.setInterval(kPollMilliseconds);
    connect(&m_poll, &QTimer::timeout, this, &CDialogShooter::poll);
    buildSteps(dialog);
}

QStringList CDialogShooter::DialogNames()
{
    return {kLibraryManager,
            QStringLiteral("DlgLaserTube"),
            QStringLiteral("DlgOne"),
            QStringLiteral("DlgLayerAddMaterials"),
            QStringLiteral("DlgLayerAddThickness"),
            QStringLiteral("DlgTps"),
            QStringLiteral("DlgLayerParamCut"),
            QStringLiteral("DlgLayerParamSweep"),
            kLibraryMerge};
}

bool CDialogShooter::UsesPrivateData(const QString &dialog)
{
    return dialog == kLibraryMerge;
}

void CDialogShooter::buildSteps(const QString &dialog)
{
    auto grabTop = [this](QWidget *top) { return grab(top); };
    if (dialog == kLibraryManager) {
        m_steps = {{kLibraryManager, grabTop}};
    } else if (dialog == QLatin1String("DlgLaserTube") || dialog == QLatin1String("DlgOne")) {
        m_steps = {{kLibraryManager, [](QWidget *d) { return pressButton(d, "pushButton_Advanced"); }},
                   {QStringLiteral("DlgLaserTube"), grabTop}};
        if (dialog == QLatin1String("DlgOne")) {
            m_steps.last().act = [](QWidget *d) { return pressButton(d, "pushButton_add"); };
            m_steps.append({dialog, grabTop});
        }
    } else if (dialog == QLatin1String("DlgLayerAddMaterials")) {
        m_steps = {{kLibraryManager, [](QWidget *d) { return chooseLastRow(d, "comboBox_Material"); }},
                   {dialog, grabTop}};
    } else if (dialog == QLatin1String("DlgLayerAddThickness")) {
        m_steps = {{kLibraryManager, [](QWidget *d) { return chooseLastRow(d, "comboBox_Thickness"); }},
                   {dialog, grabTop}};
    } else if (dialog == QLatin1String("DlgTps")) {
        // A craft first when the dialog shows no editor yet.
        m_steps = {{kLibraryManager, [](QWidget *d) {
                        const auto edits = d->findChildren<QLineEdit *>();
                        const bool shown = std::any_of(edits.cbegin(), edits.cend(), [](QLineEdit *e) { return e->isVisible() && inEditor(e); });
                        return shown ? QString() : chooseCraft(d, {0, 1, 2, 3});
                    }},
                   {kLibraryManager, editParameter},
                   {kLibraryManager, [](QWidget *d) { return pressButton(d, "pushButton_ok"); }},
                   {dialog, grabTop}};
    } else if (dialog == kLibraryMerge) {
        m_steps = {{kLibraryManager, [](QWidget *d) { return pressButton(d, "pushButton_Import"); }},
                   {QStringLiteral("QFileDialog"),
                    [this](QWidget *d) {
                        auto *files = qobject_cast<QFileDialog *>(d);
                        files->selectFile(m_importFile);
                        // Typed, as a user would, when the folder has not been read yet.
                        auto *name = files->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
                        if (files->selectedFiles().isEmpty() && name)
                            name->setText(m_importFile);
                        QMetaObject::invokeMethod(files, "accept");
                        return QString();
                    }},
                   {dialog, grabTop}};
    } else if (dialog == QLatin1String("DlgLayerParamCut")
               || dialog == QLatin1String("DlgLayerParamSweep")) {
        const QList<int> crafts = dialog == QLatin1String("DlgLayerParamCut") ? QList<int>{0, 1}
                                                                              : QList<int>{2, 3};
        const QByteArray editor = dialog.toLatin1();
        m_steps = {{kLibraryManager, [crafts](QWidget *d) { return chooseCraft(d, crafts); }},
                   {kLibraryManager, [this, editor](QWidget *d) {
                        const auto widgets = d->findChildren<QWidget *>();
                        for (QWidget *widget : widgets) {
                            if (widget->inherits(editor.constData()) && widget->isVisible())
                                return grab(d);
                        }
                        return Wording("%1 shows no %2.").arg(kLibraryManager, QLatin1String(editor));
                    }}};
    }
}

void CDialogShooter::Start()
{
    if (m_steps.isEmpty()) {
        fail(2, Wording("Unknown dialog; choose one of %1.").arg(DialogNames().join(QStringLiteral(", "))));
        return;
    }
    m_waiting.start();
    m_poll.start();
    // Queued: the double click runs the library manager's event loop.
    QTimer::singleShot(0, this, [this] {
        const QString error = openLibraryManager();
        if (!error.isEmpty() && !m_closing)
            fail(2, error);
    });
}

QString CDialogShooter::openLibraryManager()
{
    auto *table = m_panel ? m_panel->findChild<QTableWidget *>(QStringLiteral("tableWidget"))
                          : nullptr;
    if (!table)
        return Wording("There is no layer panel to open the dialogs from.");
    if (table->rowCount() == 0 || table->isRowHidden(0))
        return Wording("The drawing has no layers.");
    ILog_WriteLogF(0, "%s", "Double click on the first layer row.");
    // A cell without a widget of its own, where the table itself takes the click.
    int column = 0;
    while (column + 1 < table->columnCount() && table->cellWidget(0, column))
        ++column;
    table->scrollToTop();
    click(table->viewport(), table->visualRect(table->model()->index(0, column)).center(), true);
    return QString();
}

void CDialogShooter::poll()
{
    QWidget *top = QApplication::activeModalWidget();
    if (m_closing) {
        if (!top || m_waiting.hasExpired(kWaitMilliseconds)) {
            m_poll.stop();
            emit SigFinished(m_exitCode, m_error);
        } else if (auto *dialog = qobject_cast<QDialog *>(top)) {
            dialog->reject();
        } else {
            top->close();
        }
        return;
    }
    const Step &step = m_steps.first();
    if (!isDialog(top, step.dialog)) {
        m_settling.invalidate();
        if (m_waiting.hasExpired(kWaitMilliseconds))
            fail(2, Wording("The dialog %1 did not appear within %2 s.")
                        .arg(step.dialog)
                        .arg(kWaitMilliseconds / 1000));
        return;
    }
    if (!m_settling.isValid())
        m_settling.start();
    if (!m_settling.hasExpired(kSettleMilliseconds))
        return;
    const auto act = m_steps.takeFirst().act;
    const bool last = m_steps.isEmpty();
    m_waiting.start();
    m_settling.invalidate();
    if (last)
        m_closing = true; // grabbed below, then every dialog goes
    // Queued: an action may open a dialog, which runs its own event loop.
    QTimer::singleShot(0, this, [this, act, dialog = QPointer<QWidget>(top)] {
        if (!dialog)
            return;
        const QString error = act(dialog);
        if (!error.isEmpty() && m_exitCode == 0)
            fail(2, error);
    });
}

QString CDialogShooter::grab(QWidget *widget)
{
    const QPixmap picture = widget->grab();
    if (picture.isNull() || !picture.save(m_file, "PNG")) {
        fail(3, Wording("Cannot write the screenshot %1.").arg(m_file));
        return QString();
    }
    return QString();
}

void CDialogShooter::fail(int exitCode, const QString &error)
{
    m_exitCode = exitCode;
    m_error = error;
    m_closing = true;
    m_waiting.start();
    m_poll.start();
}
