// Where a window goes on a screen's free area: inside when it fits, shrunk
// and moved in when it does not, its title bar always on the screen.
#include "app/WindowFit.h"

#include <gtest/gtest.h>

namespace {

TEST(WindowFit, WindowsAreBroughtInsideTheFreeArea) {
    const QMargins frame(1, 20, 1, 5); // borders and title bar
    const struct {
        const char* what;
        QRect area;
        QRect wanted;
        QSize minimum;
        QRect fitted;
    } cases[] = {
        {"fits", {0, 0, 1024, 600}, {100, 100, 400, 300}, {}, {100, 100, 400, 300}},
        {"too large", {0, 0, 1024, 600}, {0, 0, 1180, 640}, {}, {1, 20, 1022, 575}},
        {"off right and bottom", {0, 0, 1024, 600}, {900, 500, 400, 300}, {}, {623, 295, 400, 300}},
        {"title bar above the top", {0, 0, 1024, 600}, {50, -10, 400, 300}, {}, {50, 20, 400, 300}},
        {"below a top panel", {0, 32, 1366, 736}, {10, 0, 980, 700}, {}, {10, 52, 980, 700}},
        {"contents cannot shrink",
         {0, 0, 1024, 600},
         {0, 0, 900, 700},
         {600, 650},
         {1, 20, 900, 650}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(WindowFit::Fitted(c.wanted, c.minimum, c.area, frame), c.fitted) << c.what;
    }
}

} // namespace
