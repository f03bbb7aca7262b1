// Many objects at a glance: one line each.
#pragma once

#include "objects/certificate.hpp"
#include "objects/crl.hpp"
#include "objects/kind.hpp"
#include "objects/ocsp.hpp"
#include "objects/pkcs7.hpp"
#include "objects/request.hpp"

#include <ostream>

namespace tool {

class Table {
  public:
    void add(const Certificate &certificate);
    void add(const Crl &crl);
    void add(const Request &request);
    void add(const Message &message);
    void add(const OcspRequest &request);
    void add(const OcspResponse &response);

    // `num_failed` objects could not be read and are counted in the last line.
    void print(std::ostream &out, size_t num_failed) const;

  private:
    using Row = std::vector<std::string>;

    // The last two cells of the row are about the extensions.
    void add(Row row, const std::vector<Extension> &extensions);

    std::vector<Row> rows_;
    size_t num_extensions_ = 0;
    size_t num_decoded_extensions_ = 0;
    ObjectKind most_ = ObjectKind::certificate;  // the last kind in its list that is there
};

}  // namespace tool
