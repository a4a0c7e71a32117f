#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "model/Color.h"
#include "model/Loadreport.h"
#include "model/Measurement.h"
#include "model/Motions.h"
#include "model/Nodeindex.h"
#include "model/Records.h"
#include "model/Typedlist.h"
#include "model/Vertex.h"

class TModel;
struct TDataContent;
struct TDataSet;
struct TModelContent;

enum class TNodeShape : std::uint8_t { Sphere = 0, Cube = 1 };

/// Nodes with the attributes needed to draw them: the nodes of a model, its display list, or one
/// measured data set.
class TDataNodeList : public TNodeList {
 public:
  /// The model is not owned. `ownsNodes`: the list of a model's own nodes, whose records are kept
  /// as read and are linked to nothing.
  TDataNodeList(TModel* model, bool ownsNodes) : Model(model), OwnsNodes(ownsNodes) {}

  /// Reads the records of Section and brings them into the order of the model's nodes. A section
  /// without records leaves the list empty. The list is kept as it is if the file cannot be opened
  /// or the load is cancelled. The model is not Loaded meanwhile.
  [[nodiscard]] TLoadReport LoadFromFile(const QString& fileName,
                                         const TLoadProgress& progress = {});
  [[nodiscard]] TLoadReport LoadFromMemory(std::string_view text,
                                           const TLoadProgress& progress = {});

  bool GetVisible() const { return visible_; }
  /// Shows or hides nodes and elements with the list. A visible list has its motions ready.
  void SetVisible(bool visible);

  /// Brings the motions up to date; whoever changes amplitudes, angles or links of a visible list
  /// calls it before the next frame. Loads do so by themselves.
  void NodesChanged();

  /// The motions made ready for frames; without entries while the list is hidden.
  const TMotions& Motions() const { return motions_; }

  /// First node with this ID, or null.
  const TNode* FindNode(std::int32_t id) const;
  /// Index of the first node with this ID, or -1. A linear scan; TModel::NodeIndex is the fast way
  /// for the nodes of a model.
  std::ptrdiff_t IndexOf(std::int32_t id) const;

  TModel* const Model;                     ///< not owned
  QString Section;                         ///< header of the records, "[" + name + "]"
  double Frequency = 0.0;                  ///< from the section's name
  TColor ElementColor = TColor::Yellow();  ///< of elements without a colour of their own
  TColor NodeColor = TColor::Blue();
  TColor EdgeColor = TColor::Black();  ///< outline of faces
  TNodeShape NodeShape = TNodeShape::Sphere;
  const TElementList* Elements = nullptr;  ///< drawn with this list's nodes; not owned
  bool ShowElements = false;
  bool ShowNodes = false;
  double NodeRadius = 0.0;
  double ElementRadius = 0.0;
  const bool OwnsNodes;
  double MaxAmplitude = 0.0;  ///< largest Length of any amplitude read
  double Scale = 1.0;         ///< 0.25 x model size / MaxAmplitude
  double DrawScale = 1.0;     ///< factor of the positions when drawn
  double Phase = 0.0;         ///< radians, added to every node angle when drawn
  TShapeInfo Info;            ///< what a laboratory's file says of the set
  /// Which nodes were measured, per node; empty if the file does not say, as all then count.
  std::vector<bool> Measured;
  /// The nodes that were not measured move with their neighbours, and are drawn in a greyer shade.
  bool IsInterpolated = false;

 private:
  friend class TMeasuredData;
  void Read(std::string_view text, TLoadReport& report, const TLoadProgress& progress);
  void Take(TDataContent content);

  bool visible_ = false;
  TMotions motions_;
};

/// Data sets that belong together. Owns the lists added by Add, refers to those added by Refer.
class TNodesSet {
 public:
  TDataNodeList* Add(std::unique_ptr<TDataNodeList> list);
  void Refer(TDataNodeList* list) { members_.push_back(list); }
  /// Empties the set; deletes the owned lists, the first one first.
  void Clear();

  std::size_t Count() const { return members_.size(); }
  bool Empty() const { return members_.empty(); }
  TDataNodeList* Get(std::size_t index) const { return members_[index]; }
  auto begin() const { return members_.begin(); }
  auto end() const { return members_.end(); }

  double GetMaxAmplitude() const { return maxAmplitude_; }
  double GetScale() const { return scale_; }
  /// MaxAmplitude becomes the largest of the members (0 for none). Scale becomes 0.25 x model size
  /// / MaxAmplitude, or keeps its value if the set is empty, has no model or does not move.
  void UpdateScale();

  /// Each stores the value and copies it into every member, if it is new.
  void SetNodeColor(TColor color);
  void SetElementColor(TColor color);
  void SetEdgeColor(TColor color);
  void SetNodeShape(TNodeShape shape);
  TColor GetNodeColor() const { return nodeColor_; }
  TColor GetElementColor() const { return elementColor_; }
  TColor GetEdgeColor() const { return edgeColor_; }
  TNodeShape GetNodeShape() const { return nodeShape_; }

  /// Writes the sum of all motions at `time` into the positions of `display`, node by node by
  /// index. Allocates nothing.
  void AddTogether(TDataNodeList& display, double time) const;

  /// The next frame of all members added together in time: advances `time` by a tenth of the
  /// period of the highest frequency and writes their sum into `display`. Returns the new time, or
  /// `time` itself, with nothing changed, if the highest frequency is 0. Allocates nothing.
  double Step(TDataNodeList& display, double time) const;

 private:
  std::vector<TDataNodeList*> members_;
  std::vector<std::unique_ptr<TDataNodeList>> owned_;
  double maxAmplitude_ = 0.0;
  double scale_ = 1.0;
  TColor nodeColor_ = TColor::Green();
  TColor elementColor_ = TColor::White();
  TColor edgeColor_ = TColor::Black();
  TNodeShape nodeShape_ = TNodeShape::Sphere;
};

/// The structural wire-frame model: nodes and the elements that join them. GUI thread only.
class TModel : public QObject {
  Q_OBJECT

 public:
  explicit TModel(QObject* parent = nullptr);
  ~TModel() override;

  /// Reads a model file, centres the model on the origin and sets Size and the radii. Loaded is
  /// set and OnChange fires at the end in every case. If the file cannot be read or the load is
  /// cancelled, the earlier model stays; else the report says what was dropped.
  TLoadReport LoadFromFile(const QString& fileName, const TLoadProgress& progress = {});
  TLoadReport LoadFromMemory(std::string_view text, const TLoadProgress& progress = {});

  /// Takes over a model that was made elsewhere; its elements refer to Nodes. Loaded is set and
  /// OnChange fires. Not while a load runs.
  void Replace(TModelContent content);

  /// Empties the display list, the nodes and the elements. Not while a load runs.
  void Clear();

  /// Index of the first model node with this ID, or -1. Constant time.
  std::ptrdiff_t NodeIndex(std::int32_t id) const { return Index().Find(id); }
  /// The index of Nodes. It follows loads and changes of the node count by itself; whoever changes
  /// IDs in place changes the count on the way or loads.
  const TNodeIndex& Index() const;

  bool Loaded = false;  ///< a load has finished; the paint tests it
  double Size = 1.0;    ///< largest distance of a node from the file's origin
  TVertex Centre;       ///< added to a position, it gives the file's coordinates
  TUnits Units;         ///< of a laboratory's file
  /// In which directions other files of that laboratory give the motions of a node, per node; empty
  /// if that is along x, y and z everywhere.
  std::vector<TAxes> Axes;
  QString NodesSection = QStringLiteral("[Nodes]");
  QString ElementsSection = QStringLiteral("[Elements]");

  TElementList Elements;  ///< in file order
  TDataNodeList Nodes;    ///< in file order, relative to the model's centre
  TDataNodeList Display;  ///< one node per model node: the frame's displacement

 signals:
  void OnChange(QObject* sender);

 private:
  friend class TLoadingMark;
  void Take(TModelContent content);
  void Read(std::string_view text, TLoadReport& report, const TLoadProgress& progress);

  bool loading_ = false;  ///< a file for this model, or data for it, is being read
  mutable TNodeIndex index_;
};

/// Marks a model as being loaded, or as having data loaded for it, while it lives: Loaded is false
/// meanwhile and true afterwards. GUI thread only.
class TLoadingMark {
 public:
  /// Null marks nothing. Not owned.
  explicit TLoadingMark(TModel* model);
  ~TLoadingMark();
  TLoadingMark(const TLoadingMark&) = delete;
  TLoadingMark& operator=(const TLoadingMark&) = delete;

  static bool On(const TModel* model);

 private:
  TModel* model_;
};

/// The most data sets that are read from one file.
constexpr std::size_t kMostDataSets = 100'000;

/// Appends the name of every section of a data file, in file order, spaces kept, up to
/// kMostDataSets. A file that cannot be read has none.
void ReadSections(std::string_view text, QStringList& names);
void ReadSections(const QString& fileName, QStringList& names);

/// The measured data of one file: all its data sets, and those that are shown. GUI thread only.
class TMeasuredData {
 public:
  TNodesSet All;    ///< owns the lists, in file order
  TNodesSet Shown;  ///< refers to the visible ones, in file order

  /// One character per data set in file order, "1" for shown and "0" for hidden; consulted by the
  /// next load. Sets beyond its end start hidden.
  QString CheckedLabels = QStringLiteral("111");

  /// The most nodes of all data sets together, which with their motions take about 150 bytes each.
  /// A load keeps the data sets that fit. It bounds what a small file of many sections can ask for.
  std::size_t MostNodes = 32'000'000;

  /// Replaces all data sets by those of a file, aligned to the model's nodes, with the node shape
  /// and colours that All has. A missing file leaves none; a cancelled load leaves the earlier.
  [[nodiscard]] TLoadReport LoadFromFile(const QString& fileName, TModel& model,
                                         const TLoadProgress& progress = {});
  [[nodiscard]] TLoadReport LoadFromMemory(std::string_view text, TModel& model,
                                           const TLoadProgress& progress = {});

  /// Replaces all data sets by some that were made elsewhere for this model. Not while a load runs.
  void Replace(std::vector<TDataSet> sets, TModel& model);

  /// Makes the data sets with a true flag the shown ones; missing flags hide. Returns whether the
  /// visibility of any set changed.
  bool Show(const std::vector<bool>& shown);

  /// The current state as a check string; "1" if there is no data set.
  QString MakeCheckString() const;

  void Clear();

 private:
  void Read(std::string_view text, TModel& model, TLoadReport& report,
            const TLoadProgress& progress);
  std::unique_ptr<TDataNodeList> MakeList(TModel& model, TDataSet set) const;
};
