#include "app/FramePacer.h"

#include "support/Wait.h"

#include <QCoreApplication>
#include <QEvent>
#include <QQuickWindow>
#include <thread>

namespace {

/// Counts the requests that come through. It is never shown, so that nothing but the test draws it.
class Window : public QQuickWindow {
public:
    int requests = 0;

    void request()
    {
        QEvent event(QEvent::UpdateRequest);
        QCoreApplication::sendEvent(this, &event);
    }

protected:
    bool event(QEvent *event) override
    {
        requests += event->type() == QEvent::UpdateRequest;
        return QQuickWindow::event(event);
    }
};

class FramePacerTest : public ::testing::Test {
protected:
    /// As the thread that draws does it.
    void drawn(std::initializer_list<void (QQuickWindow::*)()> steps)
    {
        std::thread([&] {
            for (const auto step : steps)
                (window.*step)();
        }).join();
    }

    static void passEvents()
    {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    Window window;
    FramePacer *const pacer = new FramePacer(&window);
};

} // namespace

TEST_F(FramePacerTest, requestComesThroughWhileNothingIsDrawn)
{
    window.request();
    EXPECT_EQ(window.requests, 1);
    drawn({&QQuickWindow::afterSynchronizing, &QQuickWindow::beforeRendering, &QQuickWindow::afterRendering,
        &QQuickWindow::frameSwapped});
    passEvents();
    EXPECT_EQ(window.requests, 1);
    window.request();
    EXPECT_EQ(window.requests, 2);
}

TEST_F(FramePacerTest, requestsDuringAPictureBecomeOneAtItsEnd)
{
    drawn({&QQuickWindow::afterSynchronizing, &QQuickWindow::beforeRendering});
    window.request();
    window.request();
    EXPECT_FALSE(waitFor([&] { return window.requests > 0; }, 300)) << "a picture may take any time";
    drawn({&QQuickWindow::afterRendering, &QQuickWindow::frameSwapped});
    passEvents();
    EXPECT_EQ(window.requests, 1);
    drawn({&QQuickWindow::afterSynchronizing, &QQuickWindow::beforeRendering, &QQuickWindow::afterRendering,
        &QQuickWindow::frameSwapped});
    passEvents();
    EXPECT_EQ(window.requests, 1);
}

TEST_F(FramePacerTest, requestBetweenSynchronizingAndDrawingWaitsForTheEnd)
{
    drawn({&QQuickWindow::afterSynchronizing});
    window.request();
    EXPECT_EQ(window.requests, 0);
    drawn({&QQuickWindow::beforeRendering});
    EXPECT_FALSE(waitFor([&] { return window.requests > 0; }, 300));
    drawn({&QQuickWindow::afterRendering, &QQuickWindow::frameSwapped});
    EXPECT_TRUE(waitFor([&] { return window.requests == 1; }));
}

TEST_F(FramePacerTest, endOfAnEarlierPictureDoesNotLetARequestIntoTheNext)
{
    drawn({&QQuickWindow::afterSynchronizing, &QQuickWindow::beforeRendering, &QQuickWindow::afterRendering,
        &QQuickWindow::frameSwapped, &QQuickWindow::afterSynchronizing, &QQuickWindow::beforeRendering});
    window.request();
    passEvents();
    EXPECT_EQ(window.requests, 0);
    drawn({&QQuickWindow::afterRendering, &QQuickWindow::frameSwapped});
    passEvents();
    EXPECT_EQ(window.requests, 1);
}

TEST_F(FramePacerTest, requestThatCameThroughLeavesNoneForTheNextPicture)
{
    drawn({&QQuickWindow::afterSynchronizing, &QQuickWindow::beforeRendering});
    window.request();
    // The interface is busy meanwhile: it learns of this end only after the next picture has begun.
    drawn({&QQuickWindow::afterRendering, &QQuickWindow::frameSwapped});
    window.request();
    EXPECT_EQ(window.requests, 1);
    drawn({&QQuickWindow::afterSynchronizing, &QQuickWindow::beforeRendering});
    passEvents();
    EXPECT_EQ(window.requests, 1) << "it would wait for the whole picture";
    drawn({&QQuickWindow::afterRendering, &QQuickWindow::frameSwapped});
    passEvents();
    EXPECT_EQ(window.requests, 1);
}

TEST_F(FramePacerTest, picturesOfAnAnimationOfTheDrawingThreadLetARequestIn)
{
    drawn({&QQuickWindow::beforeRendering});
    window.request();
    EXPECT_EQ(window.requests, 0);
    drawn({&QQuickWindow::afterRendering, &QQuickWindow::frameSwapped, &QQuickWindow::beforeRendering});
    passEvents();
    EXPECT_EQ(window.requests, 1);
}

TEST_F(FramePacerTest, pictureWithoutChangesHoldsNothingBackForLong)
{
    drawn({&QQuickWindow::afterSynchronizing});
    window.request();
    EXPECT_EQ(window.requests, 0);
    EXPECT_TRUE(waitFor([&] { return window.requests == 1; }));
    window.request();
    EXPECT_EQ(window.requests, 2);
}

TEST_F(FramePacerTest, endlessRequestsDoNotPutThatOff)
{
    drawn({&QQuickWindow::afterSynchronizing});
    EXPECT_TRUE(waitFor([&] {
        window.request();
        return window.requests > 0;
    }));
}

TEST_F(FramePacerTest, grabbedPictureHoldsNothingBackForLong)
{
    drawn({&QQuickWindow::afterSynchronizing, &QQuickWindow::beforeRendering});
    window.request();
    drawn({&QQuickWindow::afterRendering});
    EXPECT_EQ(window.requests, 0);
    EXPECT_TRUE(waitFor([&] { return window.requests == 1; }));
    window.request();
    EXPECT_EQ(window.requests, 2);
}

TEST_F(FramePacerTest, otherEventsComeThroughDuringAPicture)
{
    drawn({&QQuickWindow::afterSynchronizing, &QQuickWindow::beforeRendering});
    QEvent other(QEvent::User);
    EXPECT_FALSE(pacer->eventFilter(&window, &other));
}
