#include "numeric/block_rotation.h"

#include "numeric/matriu.h"

namespace morlen {

namespace {

// A 3×3 rotation, read once for many triples.
struct Rotation
{
  Rotation(const Matriu& T, Turn turn)
  {
    const double* const t = T.Data();
    const int toNextRow = turn == Turn::ToGlobal ? T.Cols() : 1;
    const int toNextColumn = turn == Turn::ToGlobal ? 1 : T.Cols();
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j)
        r[i][j] = t[i * toNextRow + j * toNextColumn];
    }
  }

  // The three numbers that start at v, `stride` apart.
  void Apply(double* v, int stride) const
  {
    const double a = v[0];
    const double b = v[stride];
    const double c = v[2 * stride];
    for (int i = 0; i < 3; ++i)
      v[i * stride] = r[i][0] * a + r[i][1] * b + r[i][2] * c;
  }

  double r[3][3];
};

}  // namespace

void TurnRows(const Matriu& T, Turn turn, Matriu& K)
{
  const Rotation rotation(T, turn);
  for (int row = 0; row < K.Rows(); row += 3) {
    for (int column = 0; column < K.Cols(); ++column)
      rotation.Apply(K.Data() + row * K.Cols() + column, K.Cols());
  }
}

void TurnColumns(const Matriu& T, Turn turn, Matriu& K)
{
  const Rotation rotation(T, turn);
  for (int triple = 0; triple < K.Size(); triple += 3)
    rotation.Apply(K.Data() + triple, 1);
}

void TurnVector(const Matriu& T, Turn turn, int n, double* v)
{
  const Rotation rotation(T, turn);
  for (int triple = 0; triple < n; triple += 3)
    rotation.Apply(v + triple, 1);
}

}  // namespace morlen
