#include "core/Picture.h"

using namespace Qt::StringLiterals;

namespace kalivor {
namespace {

using Align = PictureShape::Align;
using Kind = PictureShape::Kind;

QString Colour(PictureInk ink) {
  switch (ink) {
    case PictureInk::Text:
      return u"#1a1a1a"_s;
    case PictureInk::Faint:
      return u"#767676"_s;
    case PictureInk::Good:
      return u"#2e7d32"_s;
    case PictureInk::Repeated:
      return u"#f9a825"_s;
    case PictureInk::Damaged:
      return u"#c62828"_s;
    case PictureInk::Silent:
      return u"#6a1b9a"_s;
    case PictureInk::Refused:
      return u"#1565c0"_s;
    case PictureInk::NoPort:
      return u"#424242"_s;
    case PictureInk::Limit:
      return u"#c62828"_s;
  }
  return {};
}

QString Number(double number) {
  return QString::number(number, 'f', 1);
}

QString SvgOf(const PictureShape& shape) {
  const QRectF& place = shape.place;
  if (shape.kind == Kind::Box) {
    return u"<rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" fill=\"%5\"/>\n"_s.arg(
        Number(place.left()), Number(place.top()), Number(place.width()), Number(place.height()),
        Colour(shape.ink));
  }
  const bool left = shape.align == Align::Left;
  const bool middle = shape.align == Align::Middle;
  return u"<text x=\"%1\" y=\"%2\" text-anchor=\"%3\" fill=\"%4\">%5</text>\n"_s.arg(
      Number(left     ? place.left()
             : middle ? place.center().x()
                      : place.right()),
      Number(place.bottom()),
      left     ? u"start"_s
      : middle ? u"middle"_s
               : u"end"_s,
      Colour(shape.ink), shape.text.toHtmlEscaped());
}

}  // namespace

QString PictureSvg(const std::vector<PictureShape>& shapes, const QSizeF& size, const QString& name) {
  QString svg =
      u"<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %1 %2\" width=\"%1\" height=\"%2\" "
      u"role=\"img\" "
      "aria-label=\"%3\" font-family=\"sans-serif\" font-size=\"%4\">\n<rect width=\"%1\" height=\"%2\" "
      "fill=\"#ffffff\"/>\n"_s.arg(QString::number(size.width()), QString::number(size.height()),
                                   name.toHtmlEscaped(), QString::number(kPictureText));
  for (const PictureShape& shape : shapes)
    svg += SvgOf(shape);
  return svg + u"</svg>\n"_s;
}

}  // namespace kalivor
