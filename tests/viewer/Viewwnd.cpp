#include "viewer/Viewwnd.h"

#include "tests/support/Testing.h"
#include "viewer/Animatorabout.h"
#include "viewer/Glpanel.h"
#include "viewer/Imagebutton.h"

namespace {

const QByteArray kModel =
    "[Nodes]\n1 0 0 0\n2 3 4 0\n3 3 0 0\n[Elements]\n2\n1 1 0 -1 2 1 2\n2 1 0 -1 2 2 3\n";
const QByteArray kData =
    "[F = 5]\n1 0 0 1\n2 0 0 0\n3 0 0 0\n[F = 20]\n1 0 0 0\n2 0 2 0\n3 0 0 0\n"
    "[F = 7.5]\n1 0 0 0\n2 0 0 0\n3 4 0 0\n";

constexpr double kStep = 0.6283185307179586;  // a tenth of a turn

/// A model whose reading takes several steps.
QByteArray LargeModel() {
  QByteArray text = "[Nodes]\n";
  for (int i = 1; i <= 20000; ++i)
    text += QByteArray::number(i) + " 0.125 0.25 " + QByteArray::number(i) + "\n";
  return text;
}

class Viewwnd : public testing::Test {
 protected:
  Viewwnd() { Open({}); }

  void Open(const QByteArray& settings) {
    window.reset();
    window = std::make_unique<TViewWnd>(WriteTestFile("velmora.ini", settings));
    window->Dialogs.LoadDelayMs = 1'000'000;  // no load here is worth a dialog
  }
  template <class T>
  T* Find(const char* name) {
    return &Child<T>(*window, name);
  }
  void Trigger(const char* name) { Find<QAction>(name)->trigger(); }
  void Click(const char* name) { Find<TImageButton>(name)->click(); }
  bool IsDown(const char* name) { return Find<TImageButton>(name)->GetDown(); }
  bool IsChecked(const char* name) { return Find<QAction>(name)->isChecked(); }
  QString Text(const char* name) { return Find<QLabel>(name)->text(); }
  TGLPanel& Panel() { return *Find<TGLPanel>("P"); }
  TMeasuredData& Data() { return window->Legend().Data; }

  /// Loads through the menu, the file dialog answered by the test.
  void LoadModel(const QByteArray& text, const QString& name = "a.mod") {
    window->Dialogs.ModelFile = [file = WriteTestFile(name, text)](auto...) { return file; };
    Trigger("LoadModelMenu");
  }
  void LoadData(const QByteArray& text, const QString& name = "a.dat") {
    window->Dialogs.DataFile = [file = WriteTestFile(name, text)](auto...) { return file; };
    Trigger("LoadDataMenu");
  }
  /// Closes the window for good and gives what it saved.
  QByteArray SavedText() {
    window.reset();
    return SettingsText();
  }
  QByteArray SettingsText() { return Contents(TestFolder() + "/velmora.ini"); }
  QListWidget& Labels() { return Child<QListWidget>(window->Legend(), "Labels"); }
  /// Loads what has three nodes, two elements and three data sets.
  void LoadBoth() {
    LoadModel(kModel);
    LoadData(kData);
  }
  void ExpectTitle(const QString& loaded) {
    EXPECT_EQ(window->windowTitle(), QString("Velmora Animator ") + kProgramVersion + loaded);
  }
  void ShowActive(QWidget& widget) {
    window->show();
    widget.show();
    widget.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&widget));
  }

  std::unique_ptr<TViewWnd> window;
};

}  // namespace

/// The items below a menu, one a line, with their menus before them and a check box as it is.
QString MenuText(const QWidget& menu, const QString& path = {}) {
  QString text;
  for (const QAction* action : menu.actions()) {
    if (action->menu()) text += MenuText(*action->menu(), path + action->text() + '/');
    if (action->menu() || action->isSeparator()) continue;
    const char* box = action->isChecked() ? " [x]" : action->isCheckable() ? " [ ]" : "";
    text += path + action->text() + box + '\n';
  }
  return text;
}

TEST_F(Viewwnd, HasTheMenusOfTheProgram) {
  EXPECT_EQ(
      MenuText(*window->menuBar()).toStdString(),
      "File/&Open...\nFile/Load &Model...\nFile/Load Data...\nFile/Unload Model\nFile/Unload Data\n"
      "File/Save Model and Data As...\nFile/Save &As "
      "Bitmap...\nFile/Exit\nEdit/Copy\n"
      "View/Fit\nView/Undo view\nView/Redo view\nView/Full picture [ ]\n"
      "Options/Colors/Background...\n"
      "Options/Colors/Font...\nOptions/Colors/Elements...\nOptions/Colors/Nodes...\n"
      "Options/Node Shapes/Sphere [x]\nOptions/Node Shapes/Cube [ ]\n"
      "Options/Unmeasured nodes/Stay at rest [x]\n"
      "Options/Unmeasured nodes/Follow their neighbours [ ]\n"
      "Options/Show Model [x]\nOptions/Show Legend [ ]\nOptions/Save options on exit [x]\n"
      "Help/About...\n");
  EXPECT_EQ(Find<QAction>("CopyMenu")->shortcut(), QKeySequence("Ctrl+C"));
}

TEST_F(Viewwnd, TheCaptionNamesWhatIsLoaded) {
  LoadModel(kModel, "frame.mod");
  ExpectTitle(" : frame.mod");
  LoadData(kData, "run.dat");
  ExpectTitle(" : frame.mod + run.dat");
  Trigger("UnloadDataMenu");
  ExpectTitle(" : frame.mod");
  LoadData(kData, "run.dat");
  LoadModel(kModel, "other.mod");  // takes the data away
  ExpectTitle(" : other.mod");
  EXPECT_TRUE(Data().All.Empty());
  LoadData(kData, "run.dat");
  Trigger("UnloadModelMenu");
  ExpectTitle("");
  const TModel& model = window->Model();
  EXPECT_TRUE(model.Nodes.Empty() && model.Elements.Empty() && model.Display.Empty());
  EXPECT_TRUE(Data().All.Empty());
  EXPECT_TRUE(TakeMessages().isEmpty());
  LoadData(kData, "run.dat");
  ExpectTitle("run.dat");
  TakeMessages();

  LoadModel(kModel, "a[*]\n[*][*].mod");
  window->show();
  EXPECT_EQ(window->windowHandle()->title(),
            QString("Velmora Animator %1 : a[*]\ufffd[*][*].mod").arg(kProgramVersion));
}

TEST_F(Viewwnd, ADismissedDialogChangesNothing) {
  LoadBoth();
  QStringList starts;
  const auto dismiss = [&](QWidget*, const QString& start) {
    starts << start;
    return QString();
  };
  window->Dialogs.ModelFile = dismiss;
  window->Dialogs.DataFile = dismiss;
  window->Dialogs.Color = [](auto...) { return QColor(); };
  for (const char* menu : {"LoadModelMenu", "LoadDataMenu", "BackgroundMenu"}) Trigger(menu);
  ExpectTitle(" : a.mod + a.dat");
  EXPECT_EQ(window->Appearance().BackColor, TColor::Black());
  QFile::remove(TestFolder() + "/a.mod");
  Trigger("LoadModelMenu");
  EXPECT_EQ(starts, QStringList({TestFolder() + "/a.mod", TestFolder() + "/a.dat", ""}));
}

TEST_F(Viewwnd, WhatCannotBeReadOrIsOfAnotherKindLeavesEverythingAndIsSaid) {
  LoadBoth();
  Panel().View.PanPosX = 2.0;
  const QString folder = QFileInfo(TestFolder()).fileName();
  // As a model or as data; a null content means that there is no such file.
  const std::tuple<bool, QString, QByteArray, QString> cases[] = {
      {true, "none.mod", {}, "there is no such file"},
      {false, "none.dat", {}, "there is no such file"},
      {true, "b.mod", kData, "it is a data file, not a model file"},
      {false, "b.dat", kModel, "it is a model file, not a data file"},
      {true, "p.png", QByteArray("\x89PNG\0[Nodes]", 12), "it is not a text file"},
      {false, "p.bmp", QByteArray("BM\0[F = 1]", 10), "it is not a text file"},
      {true, "notes.mod", "bridge [old]\n", "it holds no nodes"},
      {true, "empty.mod", "[Nodes]\n[Elements]\n0\n", "it holds no nodes"},
      {true, "nan.mod", "[Nodes]\n1 nan 0 0\n", "it holds no nodes"},
      {false, "notes.dat", "bridge [old](docs/1)\n", "it holds no data sets"}};
  for (const auto& [asModel, name, content, why] : cases) {
    SCOPED_TRACE(name.toStdString());
    const QString file = TestFolder() + '/' + name;
    if (!content.isNull()) WriteTestFile(name, content);
    asModel ? static_cast<void>(window->OpenModel(file)) : window->OpenData(file);
    EXPECT_EQ(TakeMessages(), QStringList("Cannot read " + name + ": " + why + '.'));
    ExpectTitle(" : a.mod + a.dat");
    EXPECT_EQ(window->Model().Nodes.Count(), 3u);
    EXPECT_EQ(Data().Shown.Count(), 3u);
    EXPECT_EQ(Panel().View.PanPosX, 2.0);
  }
  window->OpenFiles({TestFolder()});
  EXPECT_EQ(TakeMessages(), QStringList("Cannot read " + folder + ": it is a folder."));

  LoadModel("[Nodes]\n1 0 0 0\n2 1 0 0\n[Elements]\n2\n1 1 0 -1 2 1 2\n2 1 0 -1 2 1 99\n", "b.mod");
  EXPECT_EQ(window->Model().Elements.Count(), 1u) << "what can be read is kept";
  ExpectTitle(" : b.mod");
  EXPECT_EQ(TakeMessages(), QStringList("b.mod, line 7: element 2 names node 99, which does not "
                                        "exist; the element was dropped."));
}

TEST_F(Viewwnd, AnotherModelIsSeenWithoutThePanOfTheOneBefore) {
  LoadModel(kModel);
  const auto load = [&](const QString& name) {
    Panel().View.PanPosX = 2.0;
    Panel().View.PanPosY = -3.0;
    LoadModel(kModel, name);
    EXPECT_EQ(Panel().View.PanPosY, -1.5 * Panel().View.PanPosX);
    return Panel().View.PanPosX;
  };
  EXPECT_EQ(load("a.mod"), 2.0);
  EXPECT_EQ(load("b.mod"), 0.0);
  Trigger("UnloadModelMenu");
  EXPECT_EQ(load("b.mod"), 0.0);

  const QByteArray saved = "[General]\nPanPosX=2\nModelFile=" + TestFolder().toUtf8() + "/a.mod\n";
  Open(saved);
  EXPECT_EQ(Panel().View.PanPosX, 2.0);
  const QString ini = WriteTestFile("velmora.ini", saved);
  for (const char* name : {"a.mod", "b.mod"}) {  // from the command line
    const TViewWnd other(ini, LoadSettings(ini), QStringList(TestFolder() + '/' + name));
    EXPECT_EQ(other.CurrentSettings().PanPosX, QString(name) == "a.mod" ? 2.0 : 0.0);
  }
}

TEST_F(Viewwnd, NamesAndChecksSurviveAStartWithoutTheirFiles) {
  const QByteArray data = "DataFile=/none/a.dat\n", checks = "CheckedLabels=0101\n";
  const QByteArray files = "ModelFile=/none/a.mod\n" + data;
  const QByteArray away = "[General]\n" + files + "[Windows]\n" + checks;
  Open(away);
  EXPECT_TRUE(TakeMessages().isEmpty());
  QByteArray saved = SavedText();
  EXPECT_TRUE(saved.contains(files) && saved.contains(checks)) << saved.toStdString();

  // Asked for and not there: the window opens, and what was saved stays.
  const QString ini = WriteTestFile("velmora.ini", away);
  window = std::make_unique<TViewWnd>(ini, LoadSettings(ini), QStringList("none.mod"));
  EXPECT_EQ(TakeMessages(), QStringList("Cannot read none.mod: there is no such file."));
  ExpectTitle("");
  saved = SavedText();
  EXPECT_TRUE(saved.contains(files)) << saved.toStdString();

  // The model is there, and the user does something.
  const QByteArray half = "[General]\nModelFile=" + WriteTestFile("a.mod", kModel).toUtf8() + "\n" +
                          data + "[Windows]\n" + checks;
  const std::tuple<const char*, std::function<void()>, bool> cases[] = {
      {"nothing", [] {}, true},
      {"unloads the data", [&] { Trigger("UnloadDataMenu"); }, true},
      {"unloads the model", [&] { Trigger("UnloadModelMenu"); }, false},
      {"loads another model", [&] { LoadModel(kModel, "b.mod"); }, false},
      {"loads data", [&] { LoadData(kData); }, true}};
  for (const auto& [what, act, keepsModel] : cases) {
    SCOPED_TRACE(what);
    const bool isNothing = &what == &std::get<0>(cases[0]);
    Open(half);
    act();
    saved = SavedText();
    EXPECT_EQ(saved.contains("DataFile=/none/a.dat"), isNothing);
    EXPECT_EQ(saved.contains(checks), isNothing);
    EXPECT_EQ(saved.contains("a.mod"), keepsModel);
  }
}

TEST_F(Viewwnd, InTheSumALoadAChangeOfTheLegendAndAnUnloadAreSeenAtOnce) {
  LoadModel(kModel);
  EXPECT_TRUE(IsChecked("ShowModelMenu"));
  LoadData(kData);
  EXPECT_FALSE(IsChecked("ShowModelMenu"));
  for (const bool shown : {true, false}) {
    Trigger("ShowModelMenu");
    EXPECT_EQ(IsChecked("ShowModelMenu"), shown);
    EXPECT_EQ(window->Model().Loaded, shown);
  }
  Click("SumScale");
  const auto z1 = [&] { return window->Model().Display.Get(0)->Position.z; };
  const auto y2 = [&] { return window->Model().Display.Get(1)->Position.y; };
  EXPECT_DOUBLE_EQ(z1(), 1.0);  // the amplitudes: all begin at phase 0
  EXPECT_DOUBLE_EQ(y2(), 2.0);
  Click("AnimForward");  // 0.005 of the time that the first set takes 0.2 for
  EXPECT_DOUBLE_EQ(z1(), std::cos(0.025 * 6.283185307179586));
  Labels().item(0)->setSelected(false);
  EXPECT_EQ(z1(), 0.0);
  EXPECT_NE(y2(), 0.0);
  LoadData("[F = 5]\n1 0 0 0\n2 0 3 0\n3 0 0 0\n", "b.dat");
  EXPECT_EQ(z1(), 0.0);
  EXPECT_DOUBLE_EQ(y2(), 3.0 * std::cos(0.025 * 6.283185307179586));
  Trigger("UnloadDataMenu");
  EXPECT_TRUE(IsChecked("ShowModelMenu") && window->Model().Loaded);
  EXPECT_EQ(window->Model().Nodes.Count(), 3u);
  for (const TNode* node : window->Model().Display) EXPECT_EQ(node->Position, TVertex{});
}

TEST_F(Viewwnd, AMaximisedWindowComesBackWhereItWas) {
  const QByteArray windows = "Left=50\nTop=60\nWidth=500\nHeight=400\n";
  Open("[Windows]\n" + windows);
  window->show();
  QCoreApplication::processEvents();
  for (const Qt::WindowState state : {Qt::WindowMaximized, Qt::WindowFullScreen}) {
    window->setWindowState(state);
    QCoreApplication::processEvents();
    EXPECT_NE(window->size(), QSize(500, 400));
    const TSettings now = window->CurrentSettings();
    EXPECT_EQ(QRect(*now.Left, *now.Top, *now.Width, *now.Height), QRect(50, 60, 500, 400));
  }
  const QByteArray saved = SavedText();
  EXPECT_TRUE(saved.contains(windows)) << saved.toStdString();
  TakeMessages();
}

TEST_F(Viewwnd, TheAnimationStepsOnEveryIntervalAndTheStepButtonsWait) {
  const std::pair<int, quint32> cases[] = {{10, 15}, {11, 14}, {50, 11}, {55, 10}, {60, 10},
                                           {61, 9},  {140, 2}, {141, 1}, {150, 1}};
  for (const auto& [position, ticks] : cases) {
    Find<QSlider>("Speed")->setValue(position);
    EXPECT_EQ(window->AnimationTimer().GetInterval(), ticks) << position;
  }
  LoadBoth();
  Find<QSlider>("Speed")->setValue(60);  // ten ticks
  const double& phase = window->Animation().Phase;
  Click("Anim");
  for (const char* name : {"AnimBack", "AnimForward"}) {
    EXPECT_FALSE(Find<TImageButton>(name)->isEnabled());
  }
  for (const auto& [ticks, expected] : {std::pair(9, 0.0), {1, kStep}}) {
    Tick(ticks);
    EXPECT_EQ(phase, expected);
  }
  EXPECT_EQ(Data().Shown.Get(2)->Phase, kStep);
  Click("Anim");
  Tick(50);
  EXPECT_EQ(phase, kStep);
  Click("AnimBack");
  EXPECT_EQ(phase, 0.0);
}

TEST_F(Viewwnd, TheScaleButtonsAreARadioGroup) {
  LoadModel(kModel);  // of size 5
  LoadData(kData);    // amplitudes 1, 2 and 4
  // The first set's draw scale is 0.25 x 0.25 x 5 / amplitude.
  const std::tuple<QString, TScaleType, double> cases[] = {
      {"RelatScale", TScaleType::Relative, 0.3125},
      {"AbsolScale", TScaleType::Absolute, 0.078125},
      {"AbsolScale", TScaleType::Absolute, 0.078125},
      {"SumScale", TScaleType::Sum, 0.078125}};
  for (const auto& [button, type, scale] : cases) {
    SCOPED_TRACE(button.toStdString());
    Click(button.toLatin1());
    EXPECT_EQ(window->Animation().ScaleType, type);
    for (const char* name : {"AbsolScale", "RelatScale", "SumScale"}) {
      EXPECT_EQ(IsDown(name), name == button) << name;
    }
    EXPECT_DOUBLE_EQ(Data().Shown.Get(0)->DrawScale, scale);
    EXPECT_DOUBLE_EQ(Data().Shown.Get(2)->DrawScale, 0.078125);
  }
  EXPECT_DOUBLE_EQ(window->Model().Display.DrawScale, 0.078125);
  Find<QSlider>("ScaleBar")->setValue(20);
  EXPECT_DOUBLE_EQ(window->Animation().ViewScale, 1.0);
  EXPECT_DOUBLE_EQ(window->Model().Display.DrawScale, 0.3125);
}

TEST_F(Viewwnd, TheLegendChangesWhatIsAnimated) {
  LoadBoth();
  Click("RelatScale");
  Click("AnimForward");
  for (const int set : {0, 2}) Labels().item(set)->setSelected(false);
  EXPECT_EQ(Text("ShownLabel"), "1 of 3 data sets: F = 20");
  Click("AnimForward");
  Labels().item(0)->setSelected(true);
  // The newcomer moves in step with the others, at its own scale.
  EXPECT_EQ(Data().Shown.Get(0)->Phase, Data().Shown.Get(1)->Phase);
  EXPECT_DOUBLE_EQ(Data().Shown.Get(0)->DrawScale, 0.3125);
}

TEST_F(Viewwnd, TheViewButtonsTurnTheView) {
  const TVertex oblique{30, -45, 0};
  for (const auto& [button, rotation] : {std::pair("ViewX", TVertex{0, -90, 0}),
                                         {"ViewY", {90, 0, 0}},
                                         {"ViewZ", {0, 0, 0}},
                                         {"View3D", oblique}}) {
    Panel().View.Rotation = {1, 2, 3};
    Click(button);
    EXPECT_EQ(Panel().View.Rotation, rotation) << button;
  }
  Panel().View.Zoom = 3.5;
  Panel().View.PanPosX = 2.0;
  Panel().resize(400, 200);
  Click("View1_1");
  const TViewTransform& view = Panel().View;
  EXPECT_EQ(std::tuple(view.Zoom, view.ScaleX, view.ScaleY, view.PanPosX),
            std::tuple(1.0, 2.0, 1.0, 0.0));
  EXPECT_EQ(view.Rotation, oblique);
}

TEST_F(Viewwnd, ColorsAndShapeReachTheModelAndAllData) {
  LoadBoth();
  std::vector<TColor> chosen;
  for (const char* menu : {"ElementsMenu", "NodesMenu", "BackgroundMenu", "FontMenu"}) {
    chosen.push_back(TColor::FromRgb(static_cast<int>(chosen.size()), 5, 6));
    window->Dialogs.Color = [&chosen](auto...) { return chosen.back().ToQColor(); };
    Trigger(menu);
  }
  Trigger("CubeMenu");
  EXPECT_FALSE(IsChecked("SphereMenu"));
  LoadData(kData);  // new data take the same colours
  std::vector<const TDataNodeList*> lists{&window->Model().Nodes, &window->Model().Display};
  for (const TDataNodeList* list : Data().All) lists.push_back(list);
  for (const TDataNodeList* list : lists) {
    EXPECT_EQ(std::pair(list->ElementColor, list->NodeColor), std::pair(chosen[0], chosen[1]));
    EXPECT_EQ(list->NodeShape, TNodeShape::Cube);
  }
  EXPECT_EQ(Panel().BackColor, chosen[2].ToQColor());
  EXPECT_EQ(window->Appearance().FontColor, chosen[3]);
}

TEST_F(Viewwnd, TheStatusBarSaysWhatIsThereAndWhereItStands) {
  const auto expect = [this](const QString& texts) {
    EXPECT_EQ(Text("CountLabel") + '|' + Text("ShownLabel") + '|' + Text("FrameLabel"), texts);
  };
  const QString count = "3 nodes, 2 elements|", shown = "3 of 3 data sets: F = 5, 20, 7.5|";
  expect("||");
  LoadModel(kModel);
  expect(count + '|');
  LoadData(kData);
  expect(count + shown + "Phase 0\u00b0, frame 1 of 10");
  Click("AnimForward");
  expect(count + shown + "Phase 36\u00b0, frame 2 of 10");
  Click("SumScale");
  Click("AnimForward");
  expect(count + shown + "Time 0.005, frame 2 of 10");
  Trigger("UnloadModelMenu");
  expect("||");
}

TEST_F(Viewwnd, ACancelledLoadLeavesTheEarlierState) {
  LoadBoth();
  window->Dialogs.LoadDelayMs = 0;
  int cancels = 0;
  const auto cancel = [&] {
    Child<QPushButton>(Child<QProgressDialog>(*window)).click();
    ++cancels;
  };
  QTimer::singleShot(0, window.get(), cancel);
  LoadModel(LargeModel(), "large.mod");
  QTimer::singleShot(0, window.get(), cancel);
  LoadData(kData.repeated(5000), "large.dat");
  EXPECT_EQ(cancels, 2);
  ExpectTitle(" : a.mod + a.dat");
  EXPECT_EQ(window->Model().Nodes.Count(), 3u);
  EXPECT_EQ(Data().All.Count(), 3u);
  EXPECT_FALSE(IsChecked("ShowModelMenu"));
  EXPECT_TRUE(TakeMessages().isEmpty());
}

TEST_F(Viewwnd, NothingElseHappensWhileALoadIsOnItsWay) {
  LoadBoth();
  Find<QSlider>("Speed")->setValue(150);
  Click("Anim");
  window->Dialogs.LoadDelayMs = 0;
  const QString other = WriteTestFile("other.mod", kModel);
  bool ran = false;
  QTimer::singleShot(0, window.get(), [&] {
    ran = true;
    EXPECT_NE(window->findChild<QProgressDialog*>(), nullptr);
    Tick(3);
    EXPECT_EQ(window->Animation().Phase, 0.0);
    window->OpenFiles({other});
    Trigger("UnloadModelMenu");
    EXPECT_FALSE(window->close());
  });
  LoadModel(LargeModel(), "large.mod");
  EXPECT_TRUE(ran);
  EXPECT_EQ(window->Model().Nodes.Count(), 20000u);
  ExpectTitle(" : large.mod");
}

TEST_F(Viewwnd, DroppedFilesAreDistinguishedByTheirContent) {
  const QUrl model = QUrl::fromLocalFile(WriteTestFile("x.txt", kModel));
  const QUrl data = QUrl::fromLocalFile(WriteTestFile("y.txt", kData));
  const auto isTaken = [&](const QMimeData& mime) {
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &mime, Qt::LeftButton, {});
    QCoreApplication::sendEvent(window.get(), &enter);
    return enter.isAccepted();
  };
  const std::pair<QList<QUrl>, QString> cases[] = {{{data, model}, " : x.txt + y.txt"},
                                                   {{model}, " : x.txt"},
                                                   {{data}, " : x.txt + y.txt"},
                                                   {{model, model}, " : x.txt + y.txt"}};
  for (const auto& [files, title] : cases) {
    EXPECT_TRUE(TakeMessages().isEmpty());
    QMimeData mime;
    mime.setUrls(files);
    EXPECT_TRUE(isTaken(mime));
    QDropEvent drop({9, 9}, Qt::CopyAction, &mime, Qt::LeftButton, {});
    QCoreApplication::sendEvent(window.get(), &drop);
    QCoreApplication::processEvents();
    ExpectTitle(title);
  }
  EXPECT_EQ(TakeMessages(),
            QStringList("Only one model file and one data file can be opened at a time."));
  QMimeData text;
  text.setText("no file");
  EXPECT_FALSE(isTaken(text));
}

TEST_F(Viewwnd, ComesBackAsItWasLeft) {
  window->setGeometry(30, 40, 700, 500);
  LoadBoth();
  Trigger("ShowLegendMenu");
  window->Legend().setGeometry(100, 120, 210, 240);
  Labels().item(1)->setSelected(false);
  Click("RelatScale");
  Click("ViewX");
  Click("Anim");
  Trigger("CubeMenu");
  Find<QSlider>("Speed")->setValue(99);
  Find<QSlider>("ScaleBar")->setValue(9);
  Panel().View.Zoom = 0.7;
  Panel().View.PanPosY = -1.25;
  EndSession();
  const QByteArray saved = SettingsText();
  EXPECT_EQ(SavedText(), saved);
  Open(saved);
  ExpectTitle(" : a.mod + a.dat");
  EXPECT_EQ(window->Legend().MakeCheckString(), "101");
  EXPECT_FALSE(window->Legend().isHidden());
  EXPECT_EQ(window->Animation().ScaleType, TScaleType::Relative);
  EXPECT_EQ(window->AnimationTimer().GetInterval(), 6u);  // (150 - 99 + 10) / 10
  EXPECT_TRUE(window->AnimationTimer().GetEnabled());
  EXPECT_TRUE(IsChecked("CubeMenu"));
  EXPECT_EQ(SavedText(), saved);
}

TEST_F(Viewwnd, SavesOnlyWhatItMay) {
  Trigger("CanSaveMenu");
  EXPECT_EQ(SavedText(), "");
  Open("; mine\n[General]\nCanSave=0\nAnimationSpeed=70\n");
  EXPECT_EQ(SavedText(), "; mine\n[General]\nCanSave=0\nAnimationSpeed=70\n");
  window = std::make_unique<TViewWnd>(TestFolder() + "/none.ini");
  window.reset();
  EXPECT_FALSE(QFileInfo::exists(TestFolder() + "/none.ini"));
}

TEST_F(Viewwnd, WithoutSettingsOrWithNonsenseInThemTheWindowIsSane) {
  const QByteArray windows =
      "[Windows]\nLeft=-30000\nTop=2147483647\nWidth=0\nHeight=-5\n"
      "LabelsLeft=99999\nLabelsTop=-99999\nLabelsWidth=1000000\nLabelsHeight=1\n";
  const QByteArray nonsense =
      "[General]\nModelFile=/none/at/all.mod\nDataFile=/none.dat\nAnimationSpeed=9999\nRotX=nan\n"
      "ScaleZ=1e300\nScaleType=7\nViewScale=-3\nSavePath=/none\n" +
      windows + "[Colors]\nNodeShape=9\n";
  const std::tuple<QByteArray, int, int, quint32> cases[] = {{"", 50, 5, 6}, {nonsense, 150, 1, 1}};
  for (const auto& [settings, speed, scale, ticks] : cases) {
    SCOPED_TRACE(settings.toStdString());
    Open(settings);
    ExpectTitle("");
    const TAppearance& looks = window->Appearance();
    EXPECT_EQ(std::tuple(looks.BackColor, looks.ElementColor, looks.NodeColor, looks.NodeShape),
              std::tuple(TColor::Black(), TColor::White(), TColor::Green(), TNodeShape::Sphere));
    EXPECT_TRUE(IsChecked("SphereMenu") && !IsChecked("CubeMenu"));
    EXPECT_EQ(Find<QSlider>("Speed")->value(), speed);
    EXPECT_EQ(window->AnimationTimer().GetInterval(), ticks);
    EXPECT_FALSE(window->AnimationTimer().GetEnabled());
    EXPECT_EQ(Find<QSlider>("ScaleBar")->value(), scale);
    EXPECT_EQ(window->Animation().ViewScale, 0.05 * scale);
    EXPECT_TRUE(IsDown("AbsolScale"));
    EXPECT_EQ(Panel().View.Rotation, (TVertex{30, -45, 0}));
    EXPECT_EQ(Panel().View.Zoom, 1.0);
    const QRect screen = window->screen()->availableGeometry();
    EXPECT_TRUE(screen.contains(QRect(window->pos(), window->size())));
    EXPECT_TRUE(screen.contains(QRect(window->Legend().pos(), window->Legend().size())));
    EXPECT_TRUE(window->Legend().isHidden());
    EXPECT_GE(window->height(), 300);
  }
  EXPECT_TRUE(TakeMessages().isEmpty());
  EXPECT_TRUE(SavedText().contains("\nModelFile=/none/at/all.mod\n"));
}

TEST_F(Viewwnd, FitsWhatIsShownAndGoesBackThroughViews) {
  LoadModel(kModel);  // 3 wide and 4 high about its middle, of size 5
  TViewTransform& view = Panel().View;
  Click("ViewZ");
  view.PanPosX = 7.0;
  Trigger("FitMenu");
  EXPECT_DOUBLE_EQ(view.Zoom, 2.0 / 5.0 / 0.9);
  EXPECT_EQ(view.PanPosX, 0.0);
  Click("ViewX");
  Trigger("UndoViewMenu");
  EXPECT_EQ(view.Rotation, kAlongZ);
  Trigger("UndoViewMenu");
  EXPECT_EQ(view.Zoom, 1.0);
  Trigger("RedoViewMenu");
  EXPECT_DOUBLE_EQ(view.Zoom, 2.0 / 5.0 / 0.9);
  LoadModel(kModel, "other.mod");
  Trigger("UndoViewMenu");  // there is nothing before another model
  EXPECT_DOUBLE_EQ(view.Zoom, 2.0 / 5.0 / 0.9);
}

TEST_F(Viewwnd, TheFullPictureHasNoBarsAndItsKeyLeadsBack) {
  ShowActive(*window);
  QTest::keyClick(window.get(), Qt::Key_F11);
  EXPECT_TRUE(window->isFullScreen());
  EXPECT_FALSE(window->menuBar()->isVisible());
  EXPECT_FALSE(Find<QToolBar>("ButtonBar")->isVisible());
  QTest::keyClick(window.get(), Qt::Key_F11);
  EXPECT_FALSE(window->isFullScreen());
  EXPECT_TRUE(window->menuBar()->isVisible());
}

TEST_F(Viewwnd, TheCheckOfTheLegendFollowsIt) {
  window->show();
  Trigger("ShowLegendMenu");
  EXPECT_TRUE(window->Legend().isVisible());
  window->Legend().close();
  EXPECT_FALSE(IsChecked("ShowLegendMenu"));
  Trigger("ShowLegendMenu");
  EXPECT_TRUE(window->Legend().isVisible());
  // Closing the program closes the legend too; it is remembered as shown.
  window->close();
  window->Legend().close();
  EXPECT_TRUE(SavedText().contains("LabelsVisible=1"));
  QCoreApplication::processEvents();
  TakeMessages();
}

TEST_F(Viewwnd, KeysDoWhatTheButtonsDo) {
  LoadBoth();
  ShowActive(*window);
  const auto press = [&](Qt::Key key) { QTest::keyClick(window.get(), key); };
  for (const auto& [key, phase] : {std::pair(Qt::Key_Right, kStep), {Qt::Key_Left, 0.0}}) {
    press(key);
    EXPECT_EQ(window->Animation().Phase, phase);
  }
  for (const char* name : {"Speed", "ScaleBar"}) {  // which has the keyboard, moves
    auto* slider = Find<QSlider>(name);
    slider->setFocus();
    for (const auto& [key, change] : {std::pair(Qt::Key_Right, 1), {Qt::Key_Left, -1}}) {
      const int start = slider->value();
      QTest::keyClick(slider, key);
      EXPECT_EQ(slider->value(), start + change) << name;
      EXPECT_EQ(window->Animation().Phase, 0.0);
    }
  }
  press(Qt::Key_Space);
  EXPECT_TRUE(window->AnimationTimer().GetEnabled());
  for (const auto& [key, type] : {std::pair(Qt::Key_R, TScaleType::Relative),
                                  {Qt::Key_S, TScaleType::Sum},
                                  {Qt::Key_A, TScaleType::Absolute}}) {
    press(key);
    EXPECT_EQ(window->Animation().ScaleType, type);
  }
  for (const auto& [key, turn] : {std::pair(Qt::Key_X, -90.0), {Qt::Key_3, -45.0}}) {
    press(key);
    EXPECT_EQ(Panel().View.Rotation.y, turn);
  }

  // In the legend the space bar is the legend's.
  press(Qt::Key_Space);
  EXPECT_FALSE(window->AnimationTimer().GetEnabled());
  Trigger("ShowLegendMenu");
  ShowActive(window->Legend());
  Labels().setCurrentRow(1, QItemSelectionModel::NoUpdate);
  QTest::keyClick(&Labels(), Qt::Key_Space);
  EXPECT_EQ(window->Legend().MakeCheckString(), "101");
  EXPECT_FALSE(window->AnimationTimer().GetEnabled());
  QTest::keyClick(&Labels(), Qt::Key_Right);
  EXPECT_EQ(window->Animation().Phase, kStep);
  TakeMessages();
}
