// Answers a message in the language of its writer: the subject that came may be in any charset, and what goes
// out is understood by every reader.
//
//     reply de '=?koi8-r?B?78LFxA==?= in =?windows-1252?Q?K=F6ln?=' 'Gern 🙂'

#include <zel.hpp>

#include <iostream>

int main(int argc, char **argv) {
    if (argc != 4) {
        std::cerr << "usage: reply LANGUAGE SUBJECT TEXT\n";
        return 2;
    }
    try {
        const zel::library library;
        const std::string subject = zel::read_header(argv[2]);
        const zel::body body = zel::write_body(argv[1], argv[3]);
        std::cout << "Subject: " << zel::write_header(argv[1], "Re: " + subject) << "\r\n"
                  << "MIME-Version: 1.0\r\n"
                  << "Content-Type: text/plain; charset=" << body.charset << "\r\n"
                  << "Content-Transfer-Encoding: " << body.transfer_encoding << "\r\n\r\n"
                  << body.bytes << "\r\n";
    } catch (const zel::error &error) {
        std::cerr << "reply: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
