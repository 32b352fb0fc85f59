#include "ui/Page.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <QtTest/QTest>

// One run of the program in which the dialogs over the page are used by mouse and keys.

using namespace ui;

namespace {

void collectNamed(QQuickItem *item, const QString &name, QList<QQuickItem *> &found)
{
    if (item->objectName() == name)
        found << item;
    for (QQuickItem *child : item->childItems())
        collectNamed(child, name, found);
}

QList<QQuickItem *> allNamed(const char *name, QQuickItem *root)
{
    QList<QQuickItem *> found;
    collectNamed(root, QLatin1String(name), found);
    return found;
}

QString textOf(const QQuickItem *item)
{
    return item->property("text").toString();
}

/// What the row of an information tells: its name and its value.
QStringList rowOf(QQuickItem *button)
{
    const QList<QQuickItem *> row = button->parentItem()->childItems();
    return {textOf(row.value(0)), textOf(row.value(1))};
}

/// The headings that one calibration shows: the only words of letters alone.
QStringList headingsOf(QQuickItem *display)
{
    static const QRegularExpression letters(QStringLiteral("^[A-Za-z]+$"));
    QStringList headings;
    QList<QQuickItem *> items = display->childItems();
    while (!items.isEmpty()) {
        QQuickItem *item = items.takeFirst();
        if (!item->isVisible())
            continue;
        if (letters.match(textOf(item)).hasMatch())
            headings << textOf(item);
        items = item->childItems() + items;
    }
    return headings;
}

QStringList headingsFor(const QJsonObject &record)
{
    QStringList headings{QStringLiteral("Translation"), QStringLiteral("Rotation")};
    if (!record[QLatin1String("ucms")].toArray().isEmpty())
        headings << QStringLiteral("UCM");
    if (!record[QLatin1String("pdcms")].toArray().isEmpty())
        headings << QStringLiteral("PDCM");
    return headings;
}

bool veilIsGone()
{
    return waitFor([] { return !WindowDriver::byName("veil")->isVisible(); }, minute);
}

QStringList translationOf(QQuickItem *display)
{
    QStringList numbers;
    for (const QQuickItem *item :
        WindowDriver::byName("translation", display)->childItems().value(1)->childItems()) {
        if (item->property("text").isValid())
            numbers << textOf(item);
    }
    return numbers;
}

QStringList translationFor(const QJsonObject &record)
{
    QStringList numbers;
    for (const QJsonValue &number : record[QLatin1String("translation")].toArray())
        numbers << QString::number(number.toDouble(), 'f', 5);
    return numbers;
}

/// Whether a tool tip can be seen.
bool tipIsShown()
{
    for (QQuickItem *layer : WindowDriver::window()->contentItem()->childItems()) {
        const QList<QQuickItem *> popups =
            layer->inherits("QQuickOverlay") ? layer->childItems() : QList<QQuickItem *>();
        for (const QQuickItem *item : popups) {
            if (item->isVisible() && item->parent() && item->parent()->inherits("QQuickToolTip"))
                return true;
        }
    }
    return false;
}

void expectEscapeLeaves(QQuickItem *dialog)
{
    WindowDriver::key(Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(veilIsGone());
}

/// Once the window behind has darkened, and without the tip of the button that opened it.
void pictureOfDialog(const char *name)
{
    ASSERT_TRUE(waitFor([] { return WindowDriver::byName("veil")->opacity() > 0.64; }, minute));
    QQuickItem *button = WindowDriver::byName("infoButton");
    WindowDriver::hover(WindowDriver::byName("veil"), QPointF(600, 20));
    EXPECT_TRUE(waitFor([button] { return !button->property("hovered").toBool(); }, minute));
    QTest::qWait(500);
    WindowDriver::picture(QLatin1String(name));
}

} // namespace

QString prepare(const QString &home)
{
    Q_UNUSED(home)
    qputenv("QVSIM", "headset");
    return {};
}

TEST(Dialogs, infoShowsWhatTheDeviceSaysAboutItself)
{
    ASSERT_TRUE(pageAppears());
    QQuickItem *dialog = WindowDriver::byName("infoDialog");
    WindowDriver::click(WindowDriver::byName("infoButton"));
    ASSERT_TRUE(waitFor([dialog] { return dialog->isVisible(); }, minute));
    EXPECT_EQ(dialog->property("title"), QVariant(QStringLiteral("Info")));
    const QVariantMap told = dialog->property("infos").toMap();
    EXPECT_EQ(told.value(QStringLiteral("Firmware Version")), camera()->property("version"));
    pictureOfDialog("info");
}

TEST(Dialogs, aValueOfTheInfoIsCopiedByItsButton)
{
    QQuickItem *dialog = WindowDriver::byName("infoDialog");
    const QVariantMap told = dialog->property("infos").toMap();
    const QList<QQuickItem *> buttons = allNamed("copyValue", dialog);
    ASSERT_GE(buttons.size(), 3);
    for (QQuickItem *button : buttons) {
        const QString name = rowOf(button).at(0);
        SCOPED_TRACE(qPrintable(name));
        QGuiApplication::clipboard()->setText(QStringLiteral("what was there before"));
        WindowDriver::click(button);
        EXPECT_EQ(QGuiApplication::clipboard()->text(), told.value(name).toString());
        EXPECT_EQ(rowOf(button).at(1), told.value(name).toString());
        const auto *note = button->findChild<QObject *>(QStringLiteral("toolTip"));
        EXPECT_TRUE(waitFor([note] { return note->property("opened").toBool(); }, minute));
        if (button == buttons.first())
            WindowDriver::picture(QStringLiteral("copied"));
        EXPECT_EQ(note->property("text"), QVariant(QStringLiteral("Copied")));
        EXPECT_TRUE(waitFor([note] { return !note->property("visible").toBool(); }, minute));
    }
    WindowDriver::click(WindowDriver::byName("copySdkVersion", dialog));
    EXPECT_EQ(
        QGuiApplication::clipboard()->text(), rowOf(WindowDriver::byName("copySdkVersion", dialog)).at(1));
}

TEST(Dialogs, aFeatureStaysWhatItIsUnderClicks)
{
    QQuickItem *dialog = WindowDriver::byName("infoDialog");
    const QVariantMap features = dialog->property("infos").toMap().value(QStringLiteral("features")).toMap();
    const QList<QQuickItem *> boxes = allNamed("featureBox", dialog);
    EXPECT_EQ(boxes.size(), features.size());
    QSet<int> states;
    for (QQuickItem *box : boxes) {
        const QString name = rowOf(box).at(0);
        const int wanted = features.value(name).toBool() ? Qt::Checked : Qt::PartiallyChecked;
        WindowDriver::click(box);
        EXPECT_EQ(box->property("checkState").toInt(), wanted) << qPrintable(name);
        states << wanted;
    }
    EXPECT_EQ(states.size(), 2) << "there is one of each kind";
    EXPECT_TRUE(dialog->isVisible());
}

TEST(Dialogs, infoIsLeftByItsButtonAndByEscape)
{
    QQuickItem *dialog = WindowDriver::byName("infoDialog");
    WindowDriver::click(WindowDriver::byName("clearButton", dialog));
    EXPECT_TRUE(veilIsGone());
    EXPECT_FALSE(dialog->isVisible());
    WindowDriver::click(WindowDriver::byName("infoButton"));
    ASSERT_TRUE(waitFor([dialog] { return dialog->isVisible(); }, minute));
    expectEscapeLeaves(dialog);
}

TEST(Dialogs, pressAndHoldOnInfoShowsTheCalibration)
{
    QQuickItem *dialog = WindowDriver::byName("calibrationDialog");
    WindowDriver::pressAndHold(WindowDriver::byName("infoButton"));
    ASSERT_TRUE(waitFor([dialog] { return dialog->isVisible(); }, minute));
    EXPECT_EQ(WindowDriver::ofDocument("CalibrationDisplay").size(), 2);
    EXPECT_FALSE(WindowDriver::byName("infoDialog")->isVisible());
    pictureOfDialog("calibration");
}

TEST(Dialogs, calibrationShowsTheKindThatIsChosen)
{
    QQuickItem *dialog = WindowDriver::byName("calibrationDialog");
    QQuickItem *box = WindowDriver::byName("calib", dialog);
    const auto calibration =
        camera()->property("info").toJsonObject()[QLatin1String("calibration")].toObject();
    const std::pair<const char *, int> kinds[] = {{"color", 2}, {"tof", 1}, {"stereo", 2}};
    for (const auto &[kind, count] : kinds) {
        SCOPED_TRACE(kind);
        const int entry = box->property("model").toStringList().indexOf(QLatin1String(kind));
        ASSERT_NO_FATAL_FAILURE(chooseEntry(box, box, entry));
        EXPECT_EQ(box->property("displayText").toString(), QLatin1String(kind));
        const QJsonArray records = calibration[QLatin1String(kind)].toArray();
        ASSERT_EQ(records.size(), count);
        const QList<QQuickItem *> displays = WindowDriver::ofDocument("CalibrationDisplay");
        ASSERT_EQ(displays.size(), count);
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(headingsOf(displays[i]), headingsFor(records[i].toObject()));
            EXPECT_EQ(translationOf(displays[i]), translationFor(records[i].toObject()));
        }
        pictureOfDialog((QByteArray("calibration-") + kind).constData());
    }
}

TEST(Dialogs, calibrationIsLeftByItsButtonAndByEscape)
{
    QQuickItem *dialog = WindowDriver::byName("calibrationDialog");
    WindowDriver::click(WindowDriver::byName("clearButton", dialog));
    EXPECT_TRUE(veilIsGone());
    WindowDriver::pressAndHold(WindowDriver::byName("infoButton"));
    ASSERT_TRUE(waitFor([dialog] { return dialog->isVisible(); }, minute));
    expectEscapeLeaves(dialog);
}

TEST(Dialogs, escapeLeavesADialogUnderATip)
{
    QQuickItem *dialog = WindowDriver::byName("infoDialog");
    WindowDriver::click(WindowDriver::byName("infoButton"));
    EXPECT_TRUE(waitFor(tipIsShown, minute));
    expectEscapeLeaves(dialog);
    WindowDriver::click(WindowDriver::byName("infoButton"));
    WindowDriver::click(WindowDriver::byName("copySdkVersion", dialog));
    EXPECT_TRUE(waitFor(tipIsShown, minute));
    expectEscapeLeaves(dialog);
}

TEST(Dialogs, escapeLeavesADialogBesideTheDrawer)
{
    setDrawer(true);
    QObject *drawer = WindowDriver::byId(WindowDriver::page(), "drawer");
    QQuickItem *dialog = WindowDriver::byName("infoDialog");
    WindowDriver::click(WindowDriver::byName("infoButton"));
    ASSERT_TRUE(waitFor([dialog] { return dialog->isVisible(); }, minute));
    EXPECT_TRUE(waitFor([drawer] { return !drawer->property("visible").toBool(); }, minute));
    expectEscapeLeaves(dialog);
    // Now the drawer stays.
    setDrawer(true);
    WindowDriver::click(id("generalText"));
    WindowDriver::click(id("menuAutoCloseCheckbox"));
    WindowDriver::click(WindowDriver::byName("infoButton"));
    ASSERT_TRUE(waitFor([dialog] { return dialog->isVisible(); }, minute));
    EXPECT_TRUE(drawer->property("visible").toBool());
    expectEscapeLeaves(dialog);
    EXPECT_TRUE(drawer->property("visible").toBool());
}

TEST(Dialogs, nothingUnexpectedIsInTheLog)
{
    EXPECT_THAT(unexpectedWarnings(), ::testing::IsEmpty());
}
