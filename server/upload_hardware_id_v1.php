<?php
/* Takes the hardware lists that users of the program contribute. One request carries one text file in exactly the form
 * that the program sends. A good file is stored under a name of our own making, outside the web root, for a maintainer
 * to read; the answer is one line of text. Nothing that was sent is ever shown, run or used as a path.
 *
 * QUORVANE_UPLOAD_DIR (a fastcgi parameter) names the folder; the account that runs PHP must be able to write there. */

declare(strict_types=1);

const MAX_FILE_BYTES = 1024 * 1024;
const MAX_FILES_PER_ADDRESS_AND_DAY = 20;
const MAX_FIELD_BYTES = 255;
const BOUNDARY = '3fbd04f5-b1ed-4060-99b9-fca7ff59c113';
const FIELD = 'uploadfile';
const FILE_NAME = 'new_hardware.txt';

function finish(int $status, string $line): never
{
    http_response_code($status);
    header('Content-Type: text/plain; charset=us-ascii');
    header('X-Content-Type-Options: nosniff');
    echo $line, "\n";
    exit;
}

/* The bytes of the body apart from the file itself. With the length fixed, no further part or header fits in. */
function form_length(): int
{
    return strlen('--' . BOUNDARY . "\r\n"
        . 'Content-Disposition: multipart/form-data; name="' . FIELD . '"; filename="' . FILE_NAME . "\"\r\n"
        . "Content-Type: application/octet-stream\r\n\r\n"
        . "\r\n--" . BOUNDARY . '--');
}

/* The file of a request in the program's form, or null. */
function sent_file(): ?array
{
    $file = $_FILES[FIELD] ?? null;
    $isForm = ($_SERVER['REQUEST_METHOD'] ?? '') === 'POST'
        && ($_SERVER['CONTENT_TYPE'] ?? '') === 'multipart/form-data; boundary=' . BOUNDARY
        && $_POST === [] && count($_FILES) === 1 && $file !== null && is_string($file['name']);
    if (!$isForm || $file['error'] !== UPLOAD_ERR_OK || $file['name'] !== FILE_NAME
        || $file['type'] !== 'application/octet-stream'
        || (int) ($_SERVER['CONTENT_LENGTH'] ?? 0) !== form_length() + $file['size']) {
        return null;
    }
    return $file;
}

/* Hardware ID, device name and manufacturer, joined by "|||", in the code page of the program: no control characters,
 * none of the three empty. */
function is_contribution_line(string $line): bool
{
    $fields = explode('|||', $line);
    if (count($fields) !== 3) {
        return false;
    }
    foreach ($fields as $field) {
        if ($field === '' || strlen($field) > MAX_FIELD_BYTES || preg_match('/[\x00-\x1F\x7F]/', $field) === 1) {
            return false;
        }
    }
    return true;
}

/* The number of lines, or null where one of them is not as it should be. Each line ends in CR LF. */
function count_lines(string $content): ?int
{
    if ($content === '') {
        return 0;
    }
    if (!str_ends_with($content, "\r\n")) {
        return null;
    }
    $lines = explode("\r\n", substr($content, 0, -2));
    foreach ($lines as $line) {
        if (!is_contribution_line($line)) {
            return null;
        }
    }
    return count($lines);
}

/* Counts this file for its sender; false once the day's number is used up. One network of an IPv6 user is one sender.
 * Addresses are kept as checksums, and only for the day. */
function within_quota(string $folder): bool
{
    $packed = @inet_pton($_SERVER['REMOTE_ADDR'] ?? '');
    if ($packed === false) {
        return false;
    }
    $sender = strlen($packed) === 16 ? substr($packed, 0, 8) : $packed;
    $today = $folder . '/counts/' . gmdate('Y-m-d');
    if (!is_dir($today)) {
        forget_old_counts($folder . '/counts');
        @mkdir($today, 0700, true);
    }
    $counter = @fopen($today . '/' . hash('sha256', $sender), 'c+b');
    if ($counter === false || !flock($counter, LOCK_EX)) {
        return false;
    }
    $count = (int) stream_get_contents($counter) + 1;
    rewind($counter);
    $counted = $count <= MAX_FILES_PER_ADDRESS_AND_DAY && fwrite($counter, (string) $count) !== false && fflush($counter);
    fclose($counter);
    return $counted;
}

function forget_old_counts(string $counts): void
{
    foreach (glob($counts . '/????-??-??') ?: [] as $day) {
        if (basename($day) < gmdate('Y-m-d')) {
            array_map('unlink', glob($day . '/*') ?: []);
            @rmdir($day);
        }
    }
}

/* Whole or not at all. */
function store(string $folder, string $content): bool
{
    $name = gmdate('Ymd-His') . '-' . bin2hex(random_bytes(8));
    $part = "$folder/$name.part";
    $file = @fopen($part, 'xb');
    if ($file === false) {
        return false;
    }
    $written = fwrite($file, $content) === strlen($content) && fflush($file);
    $written = fclose($file) && $written;
    if ($written && rename($part, "$folder/$name.txt")) {
        return true;
    }
    @unlink($part);
    return false;
}

function main(): never
{
    umask(0027);
    $folder = $_SERVER['QUORVANE_UPLOAD_DIR'] ?? '';
    if ($folder === '' || !is_dir($folder)) {
        finish(500, 'Not set up.');
    }
    $file = sent_file();
    if ($file === null) {
        finish(400, 'Not a contribution.');
    }
    if ($file['size'] > MAX_FILE_BYTES) {
        finish(413, 'Too large.');
    }
    $content = (string) file_get_contents($file['tmp_name']);
    $lines = count_lines($content);
    if ($lines === null) {
        finish(400, 'Not a contribution.');
    }
    if ($lines === 0) {
        finish(200, 'Nothing to store.');
    }
    if (!within_quota($folder)) {
        finish(429, 'Too many files today.');
    }
    if (!store($folder, $content)) {
        finish(500, 'Could not be stored.');
    }
    finish(200, "Thank you: $lines line(s).");
}

main();
