#include "tests/toolbar/ToolbarTest.h"
#include "toolbar/popover/VLPopoverFontSizeViewForIbis.h"
#include "toolbar/popover/VLPopoverFontSizeViewForTern.h"
#include "toolbar/popover/VLPopoverLineColorViewForIbis.h"
#include "toolbar/popover/VLPopoverLineColorViewForTern.h"

using Strings = std::vector<std::string>;
using vorla::test::runPending;

class TernToolbar : public Toolbar {
 protected:
    TernToolbar() : Toolbar("Tern-theme") {}
};

TEST_F(Toolbar, ChoicesAreRememberedForTheTool) {
    clickTool(3);
    finishAnimation();
    editor_->take();
    pointer_.click(middleOf(*popover().lineWidthView()->buttonArray()[1]));
    EXPECT_EQ(editor_->take(), Strings{"width 6"});
    auto* colors = dynamic_cast<VLPopoverLineColorViewForIbis*>(popover().lineColorView());
    ASSERT_TRUE(colors);
    pointer_.click(middleOf(*colors->colorButton()));
    ASSERT_TRUE(colors->colorMenu()->isOpen());
    pointer_.click(middleOf(*colors->colorMenu()->itemArray()[4]));
    EXPECT_FALSE(colors->colorMenu()->isOpen());
    EXPECT_EQ(editor_->take(), Strings{"colour #00a345"});
    clickTool(1);
    EXPECT_EQ(editor_->take(), Strings({"tool 1", "width 3", "colour #ff0000"}));
    clickTool(3);
    EXPECT_EQ(editor_->take(), Strings({"tool 3", "width 6", "colour #00a345"}));
}

TEST_F(Toolbar, AMenuClosesAtAPressElsewhereWhichStillActs) {
    clickTool(4);
    finishAnimation();
    auto* sizes = dynamic_cast<VLPopoverFontSizeViewForIbis*>(popover().fontSizeView());
    ASSERT_TRUE(sizes);
    pointer_.click(middleOf(*sizes->fontSizeButton()));
    ASSERT_TRUE(sizes->fontSizeMenu()->isOpen());
    EXPECT_LE(sizes->fontSizeMenu()->frame().maxY(), 600);
    editor_->take();
    clickTool(1);
    EXPECT_FALSE(sizes->fontSizeMenu()->isOpen());
    EXPECT_EQ(editor_->take().front(), "tool 1");
    clickTool(4);
    finishAnimation();
    pointer_.click(middleOf(*sizes->fontSizeButton()));
    editor_->take();
    pointer_.click(middleOf(*sizes->fontSizeMenu()->itemArray().back()));
    EXPECT_EQ(editor_->take(), Strings{"width 96"});
    EXPECT_EQ(sizes->fontSize(), 96U);
    pointer_.click(middleOf(*sizes->fontSizeButton()));
    toolbar_.reset();  // with the menu open
    runPending();
    EXPECT_TRUE(panel_->overlays().empty());
}

TEST_F(TernToolbar, OffersSwatchesAndNamedSizes) {
    clickTool(7);
    finishAnimation();
    EXPECT_EQ(editor_->take(), Strings({"tool 7", "colour #ff2600", "width 24"}));
    auto* sizes = dynamic_cast<VLPopoverFontSizeViewForTern*>(popover().fontSizeView());
    ASSERT_TRUE(sizes);
    for (const double y : {300.0, 100.0}) {
        toolbar_->setPosition({100, y});
        pointer_.click(middleOf(*sizes->chooseButton()));
        ASSERT_TRUE(sizes->fontSizeMenu()->isOpen());
        const bool above = sizes->fontSizeMenu()->frame().y > popover().window()->frame().y;
        EXPECT_EQ(above, y == 100.0);
        pointer_.click(middleOf(*sizes->fontSizeMenu()->buttons()[y == 100.0 ? 2 : 0]));
    }
    EXPECT_EQ(editor_->take(), Strings({"width 18", "width 36"}));
    sizes->setFontSize(14);
    EXPECT_EQ(sizes->fontSize(), 24U) << "none of the three";
    auto* colors = dynamic_cast<VLPopoverLineColorViewForTern*>(popover().lineColorView());
    ASSERT_TRUE(colors);
    pointer_.click(middleOf(*colors->buttonArray()[5]));
    EXPECT_EQ(editor_->take(), Strings{"colour #ffffff"});
    colors->setSelectedColor(QColor(1, 2, 3));
    EXPECT_EQ(colors->selectedColor(), colors->defaultColor());
}
