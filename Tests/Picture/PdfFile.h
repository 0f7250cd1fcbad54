// What a PDF of the writer's own holds, unpacked.
#pragma once

#include <QByteArray>
#include <string>

namespace tests {

inline std::string streamOf(const std::string& pdf, int object) {
  const std::size_t begin = pdf.find("stream\n", pdf.find("\n" + std::to_string(object) + " 0 obj")) + 7;
  const std::size_t end = pdf.find("\nendstream", begin);
  QByteArray bytes("\0\0\0\1", 4);  // some length; the library makes more room
  bytes.append(pdf.data() + begin, static_cast<qsizetype>(end - begin));
  const QByteArray plain = qUncompress(bytes);
  return plain.isEmpty() ? pdf.substr(begin, end - begin) : plain.toStdString();
}

/// The stream that an entry names for the first time from there on.
inline std::string streamAt(const std::string& pdf, const std::string& entry, std::size_t from = 0) {
  const std::size_t at = pdf.find(entry + " ", from);
  return at == std::string::npos ? std::string() : streamOf(pdf, std::stoi(pdf.substr(at + entry.size() + 1)));
}

/// The content of a PDF's only page.
inline std::string contentOf(const std::string& pdf) { return streamAt(pdf, "/Contents"); }

}  // namespace tests
