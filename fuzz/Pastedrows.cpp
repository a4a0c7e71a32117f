#include <QApplication>
#include <QClipboard>
#include <cmath>
#include <cstdlib>

#include "components/channels/Variable.h"
#include "components/sources/Datasheet.h"
#include "components/sources/Tables.h"
#include "model/Message.h"

namespace {

/// A sheet on a table with two columns beside the time.
struct TOpenSheet {
  TOpenSheet() {
    table.GetControls()->Add(&first);
    table.GetControls()->Add(&second);
    table.SetMaxRows(100);
    sheet.SetTable(&table);
  }
  TVariable first;
  TVariable second;
  TDataTable table;
  TDataSheet sheet;
};

}  // namespace

/// Any text from the clipboard, pasted into a table: all of it or nothing, and what was pasted is
/// copied and pasted as the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static int argc = 1;
  static char name[] = "fuzz";
  static char* argv[] = {name, nullptr};
  static const auto* const application = new QApplication(argc, argv);
  Q_UNUSED(application)
  static bool refused = false;
  static const bool heard = (SetMessageSink([](const QString&) { refused = true; }), true);
  Q_UNUSED(heard)
  refused = false;
  TOpenSheet open;
  QApplication::clipboard()->setText(
      QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size)));
  open.sheet.Paste();
  if (refused && open.table.RowCount() != 0) std::abort();
  if (open.table.RowCount() > 100) std::abort();
  if (open.table.RowCount() == 0) return 0;
  const QString pasted = open.table.GetDataValues();
  QCoreApplication::processEvents();  // the sheet follows
  open.sheet.selectAll();
  open.sheet.Copy();
  TOpenSheet again;
  again.sheet.Paste();
  if (again.table.GetDataValues() != pasted) std::abort();
  return 0;
}
