#include "Tolmex/DocData.h"

#include "Tolmex/DataManager.h"
#include "Tolmex/InputPointMonitor.h"
#include "Tolmex/Reactors.h"

namespace OrvLib {
namespace {

AsdkDataManager<CDocData> documents;

}  // namespace

CDocData::CDocData() = default;

CDocData::~CDocData() = default;

void CDocData::attachTo(AcApDocument& document) {
  if (!reactor) reactor = std::make_unique<DocDataReactor>(true, &document);
  if (!monitor) monitor = std::make_unique<InputPointMonitor>(true, &document);
}

CDocData& currentDocData() { return documents.current(); }

void attachToDocuments() {
  documents.start();
  documents.attachCurrent();
}

void detachFromDocuments() { documents.stop(); }

}  // namespace OrvLib
