#include "exchange/Findings.h"

#include <gtest/gtest.h>

TEST(TFindings, AreShownFileByFileInAlignedColumns) {
  TFindings findings;
  findings.BeginFile("/jobs/wing.unv");
  findings.Use("2411", 12, "37 nodes");
  findings.Use("58b", 1200, "a function");
  findings.BeginFile("/jobs/notes.txt");
  findings.BeginFile("/jobs/shapes\nUsed.unv");
  findings.LeaveOut("9999", 3, "its type is \x1b[2J not known");
  findings.ReturnTo(0);
  findings.Warn("", 0, "no units are given");
  findings.BeginJob();
  findings.Warn("", 0, "3 nodes have no measurement: 4, 5, 9");
  findings.Summary = "37 nodes";
  EXPECT_EQ(findings.Line(), "37 nodes; 3 things to know");
  EXPECT_EQ(findings.Text(), QString("37 nodes\n"
                                     "\nAll files together\n"
                                     "  To know\n"
                                     "    3 nodes have no measurement: 4, 5, 9\n"
                                     "\n/jobs/wing.unv\n"
                                     "  To know\n"
                                     "    no units are given\n"
                                     "  Used\n"
                                     "    2411  line 12    37 nodes\n"
                                     "    58b   line 1200  a function\n"
                                     "\n/jobs/notes.txt\n"
                                     "  Nothing was found in it\n"
                                     "\n/jobs/shapes\uFFFDUsed.unv\n"
                                     "  Left out\n"
                                     "    9999  line 3  its type is \uFFFD[2J not known\n"));
}

TEST(TFindings, KeepTheFirstOfAKindAndCountTheRest) {
  TFindings findings;
  findings.BeginFile("a.unv");
  for (std::size_t line = 1; line <= 5000; ++line) {
    findings.LeaveOut("58", line, "cut");
    findings.Use("58", line, "read");
  }
  findings.Warn("58", 1, "short");
  EXPECT_EQ(findings.All().size(), 1021);
  EXPECT_EQ(findings.ToKnow(), 5001);
  EXPECT_TRUE(findings.Text().contains("    58           and 4980 more\n  Used\n"));
  EXPECT_TRUE(
      findings.Text().endsWith("    58  line 1000  read\n    58             and 4000 more\n"))
      << findings.Text().right(200).toStdString();
  EXPECT_EQ(findings.Line(), "5001 things to know");
}

TEST(TFindings, AreBoundedWhateverAFileSays) {
  TFindings findings;
  for (int file = 0; file < 20; ++file) {
    findings.BeginFile("a.unv");
    for (int i = 0; i < 20'000; ++i) {
      if (i < 5000) findings.Use(QString::number(i % 100), 1, "read");
      findings.LeaveOut(QString::number(i) + QString(1000, 'x'), 1, QString(2000, 'y'));
    }
  }
  EXPECT_EQ(findings.ToKnow(), 400'000);
  EXPECT_LE(findings.All().size(), 8000);
  EXPECT_EQ(findings.All().back().Kind, TFindings::TKind::LeftOut);
  EXPECT_EQ(findings.All().back().File, 19) << "what was used has left room";
  EXPECT_LT(findings.Text().size(), 4'000'000);
}

TEST(TFindings, ALineSaysWhatFailed) {
  TFindings findings;
  findings.BeginFile("/jobs/wing.unv");
  findings.Warn("", 0, "old");
  EXPECT_EQ(findings.Line(), "1 thing to know");
  EXPECT_FALSE(findings.Failed());
  findings.Fail("it is a folder");
  EXPECT_TRUE(findings.Failed());
  EXPECT_EQ(findings.Line(), "Cannot read wing.unv: it is a folder.");
  findings.Cancel();
  EXPECT_EQ(findings.Line(), "");
}
