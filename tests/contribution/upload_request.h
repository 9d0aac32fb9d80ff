// What the server must see of an upload, byte for byte.
#pragma once

#include <QByteArray>

inline QByteArray UploadBody(const QByteArray& content) {
    return "--3fbd04f5-b1ed-4060-99b9-fca7ff59c113\r\n"
           "Content-Disposition: multipart/form-data; name=\"uploadfile\"; filename=\"new_hardware.txt\"\r\n"
           "Content-Type: application/octet-stream\r\n\r\n" +
           content + "\r\n--3fbd04f5-b1ed-4060-99b9-fca7ff59c113--";
}

inline QByteArray UploadRequest(int port, const QByteArray& path, const QByteArray& content) {
    return "POST " + path + " HTTP/1.0\r\nHost: 127.0.0.1:" + QByteArray::number(port) +
           "\r\nUser-Agent: Uploader\r\nContent-Type: multipart/form-data; "
           "boundary=3fbd04f5-b1ed-4060-99b9-fca7ff59c113\r\nContent-Length: " +
           QByteArray::number(UploadBody(content).size()) + "\r\n\r\n" + UploadBody(content);
}
