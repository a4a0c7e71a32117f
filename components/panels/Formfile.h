#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <vector>

#include "components/panels/Published.h"

/// The text of a form file (.ui) with the places in it that belong to its widgets: what can be
/// looked up, cut out and put in without touching anything else of the file.
class TFormFile {
 public:
  /// An element inside a value, such as the file of an icon for one state.
  struct TPart {
    QString Name;
    QString Text;
  };
  struct TProperty {
    QString Name;  ///< dotted for a property of a sub-object
    TFormValue Value;
    std::vector<TPart> Parts;  ///< at any depth, in the order of the text
    QString Theme;             ///< of an icon
    int ValueCount = 0;        ///< elements of which each is a value; the last one counts
    bool IsAttribute = false;  ///< of the place that the widget has in the one around it
    bool IsDynamic = false;    ///< the file says that the class does not have it
    int Line = 0;              ///< from 1
    qsizetype Begin = 0;
    qsizetype End = 0;  ///< one past the element, in characters of the text
  };
  struct TWidget {
    QString ClassName;
    QString Name;
    int Line = 0;
    qsizetype ContentBegin = 0;  ///< one past the start tag
    bool SelfClosing = false;
    int Children = 0;                   ///< widgets right in it
    std::vector<TProperty> Properties;  ///< its own, not those of widgets in it
  };
  struct TLayout {
    QString ClassName;
    QString Name;
    int Line = 0;
  };
  /// A property of what is no widget: of an item, an action, or of a widget's place.
  struct TOtherProperty {
    QString Owner;  ///< "name (class)"
    TProperty Property;
  };

  /// From a signal of an object to a slot or signal of another.
  struct TConnection {
    QString Sender;
    QString Signal;
    QString Receiver;
    QString Slot;
    int Line = 0;
    qsizetype Begin = 0;
    qsizetype End = 0;
  };

  /// Limits that keep a file from exhausting the program.
  static constexpr int kMaxWidgets = 20000;
  static constexpr int kMaxConnections = 20000;
  static constexpr int kMaxDepth = 200;           ///< of elements in each other
  static constexpr int kMaxAttributes = 100;      ///< of an element
  static constexpr int kMaxPixels = 10000;        ///< of a coordinate, width or height
  static constexpr qint64 kMaxArea = 1 << 27;     ///< pixels of all widgets together
  static constexpr int kMaxSpan = 50;             ///< of an item, in rows or columns
  static constexpr int kMaxGrids = 6;             ///< in each other: each doubles the work
  static constexpr int kMaxInRow = 1000;          ///< of a layout's rows and columns
  static constexpr int kMaxCells = 100000;        ///< of all tables together
  static constexpr qint64 kMaxLookups = 1 << 26;  ///< of places in order, among the widgets
  static constexpr int kMaxItems = 50000;         ///< of lists, trees and layouts together

  /// Takes the text of a file. False, with a sentence "line N: what is wrong", for a text that is
  /// no form file.
  [[nodiscard]] bool Parse(const QString& text, QString* error);

  const QString& Text() const { return text_; }
  /// In the order of the text, the outermost first.
  const std::vector<TWidget>& Widgets() const { return widgets_; }
  const std::vector<TConnection>& Connections() const { return connections_; }

  const std::vector<TLayout>& Layouts() const { return layouts_; }
  const std::vector<TOtherProperty>& Others() const { return others_; }

  /// The text in which elements of properties are replaced, or cut out if there is no text for
  /// them, and without connections.
  using TReplacements = std::map<const TProperty*, QString>;
  QString Loadable(const TReplacements& replacements) const;

  /// The text of the property's element, with a value that is one text, or has parts.
  static QString ElementWith(const TProperty& property, const QString& text,
                             const std::vector<TPart>& parts = {});

  /// The text in which each widget's properties for which `drop` is true are replaced by those that
  /// `put` gives.
  using TNewProperties = std::vector<std::pair<QString, TFormValue>>;
  QString Replaced(const std::function<bool(const TWidget&, const TProperty&)>& drop,
                   const std::function<TNewProperties(const TWidget&)>& put) const;

 private:
  QString text_;
  std::vector<TWidget> widgets_;
  std::vector<TLayout> layouts_;
  std::vector<TOtherProperty> others_;
  std::vector<TConnection> connections_;
};
