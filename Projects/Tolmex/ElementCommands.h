// Commands that turn polylines into area, hedge and fence elements.
#pragma once

#include "OrvLib/ARX/HostInterface.h"
#include "Tolmex/Catalogue.h"

namespace OrvLib {

struct ElementCommand {
  Category category;
  const ACHAR* prompt;
};

namespace elements {
inline constexpr ElementCommand kAsphalt{Category::Asphalt, L"\nValitse muokattava asfalttipäällyste:\n"};
inline constexpr ElementCommand kGrass{Category::Grass, L"\nValitse muokattava nurmialue:\n"};
inline constexpr ElementCommand kGravel{Category::Gravel, L"\nValitse muokattava sora-alue:\n"};
inline constexpr ElementCommand kForest{Category::Forest, L"\nValitse muokattava metsäalue:\n"};
inline constexpr ElementCommand kHedge{Category::Hedge, L"\nValitse muokattava pensasviiva:\n"};
inline constexpr ElementCommand kYardPaving{Category::YardPaving, L"\nValitse muokattava pihalaatta:\n"};
inline constexpr ElementCommand kPath{Category::Path, L"\nValitse muokattava polku:\n"};
inline constexpr ElementCommand kBoardFence{Category::BoardFence, L"\nValitse muokattava lauta-aita:\n"};
inline constexpr ElementCommand kStoneFence{Category::StoneFence, L"\nValitse muokattava kiviaita:\n"};
}  // namespace elements

/// Lets the user select polylines and makes each an element of the category: on its outline layer, tagged, and with a
/// fill when the category has a pattern and the polyline can be filled. What it was before is replaced.
void makeElements(const ElementCommand& command);

}  // namespace OrvLib
