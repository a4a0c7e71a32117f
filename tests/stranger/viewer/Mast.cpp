// A mast with a drum on top, lengths in m, and how it sways at 2 and at 3 Hz.

extern const char kMast[] = R"(
[Options]
NodeRadius=0.06
ElementRadius=0.03

[Nodes]
1  0  0    0
2  0  0.7  0
3  0  1.4  0
4  0  1.4  0.4
5  0  1.4 -0.4

[Elements]
3
1  1  0                  -1  2  1 2
2  1  0                  -1  2  2 3
3  2  0.2 0.06 0.2 16753920  2  4 5
)";

extern const char kMotion[] = R"(
[F = 2]
1  0    0  0
2  0.1  0  0
3  0.3  0  0
4  0.3  0  0
5  0.3  0  0

[F = 3]
1  0  0   0
2  0  0  -0.1
3  0.2  0   0.1
4  0.2  0   0.1
5  0.2  0   0.1
)";
