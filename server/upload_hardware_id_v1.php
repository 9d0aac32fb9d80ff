<?php
/* Takes the hardware lists that users of the program contribute. One request carries one text file in exactly the form
 * that the program sends. Its good lines are stored under a name of our own making, outside the web root, for a
 * maintainer to read; the answer is one line of text. Nothing that was sent is ever shown, run or used as a path.
 *
 * Two fastcgi parameters set it up. QUORVANE_UPLOAD_DIR names the folder; the account that runs PHP must be able to
 * write there. QUORVANE_UPLOAD_LIMIT is how many files one address may send a day, 20 by default; 0 is no limit. */

declare(strict_types=1);

// A warning names folders of this machine: for the log, not for the sender.
ini_set('display_errors', '0');

const MAX_FILE_BYTES = 1024 * 1024;
const FILES_PER_ADDRESS_AND_DAY = 20;
const MAX_FIELD_BYTES = 255;
const BOUNDARY = '3fbd04f5-b1ed-4060-99b9-fca7ff59c113';
const FIELD = 'uploadfile';
const FILE_NAME = 'new_hardware.txt';
const LEFT_BEHIND_AFTER = 86400; // seconds until a part of a file is one that nobody goes on with

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

/* The file of a request in the program's form, or null. One that PHP itself could not keep ends the request here. */
function sent_file(): ?array
{
    $file = $_FILES[FIELD] ?? null;
    $isForm = ($_SERVER['REQUEST_METHOD'] ?? '') === 'POST'
        && ($_SERVER['CONTENT_TYPE'] ?? '') === 'multipart/form-data; boundary=' . BOUNDARY
        && $_POST === [] && count($_FILES) === 1 && $file !== null && is_string($file['name']);
    if ($isForm && in_array($file['error'], [UPLOAD_ERR_NO_TMP_DIR, UPLOAD_ERR_CANT_WRITE], true)) {
        finish(500, 'Could not be stored.');
    }
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

/* The lines that are as they should be; each ends in CR LF, so what stands behind the last one was cut off. */
function good_lines(string $content): array
{
    $lines = explode("\r\n", $content);
    array_pop($lines);
    return array_filter($lines, 'is_contribution_line');
}

/* Who sends, as far as the limit goes: one network of an IPv6 user is one sender, and an IPv4 address is the same one
 * where the server sees it through an IPv6 socket. */
function sender(): string
{
    $address = $_SERVER['REMOTE_ADDR'] ?? '';
    $packed = (string) @inet_pton($address);
    if (strlen($packed) !== 16) {
        return $packed === '' ? $address : $packed;
    }
    $mapped = str_repeat("\0", 10) . "\xFF\xFF";
    return str_starts_with($packed, $mapped) ? substr($packed, 12) : substr($packed, 0, 8);
}

function daily_limit(): int
{
    $limit = $_SERVER['QUORVANE_UPLOAD_LIMIT'] ?? '';
    $limit = ctype_digit($limit) ? (int) $limit : FILES_PER_ADDRESS_AND_DAY;
    return $limit === 0 ? PHP_INT_MAX : $limit;
}

/* The sender's counter of the day, open and nobody else's until it is closed; null where there cannot be one. Addresses
 * are kept as checksums, and only for the day. */
function open_counter(string $folder): mixed
{
    $today = $folder . '/counts/' . gmdate('Y-m-d');
    if (!is_dir($today)) {
        forget_old($folder);
        @mkdir($today, 0700, true);
    }
    $counter = @fopen($today . '/' . hash('sha256', sender()), 'c+b');
    return $counter !== false && flock($counter, LOCK_EX) ? $counter : null;
}

/* Always of one length: what takes the place of an earlier number needs no room. */
function write_count(mixed $counter, int $count): bool
{
    $text = sprintf('%010d', $count);
    return rewind($counter) && @fwrite($counter, $text) === strlen($text) && fflush($counter);
}

/* Counters of earlier days, and parts of files whose making was cut off. */
function forget_old(string $folder): void
{
    foreach (glob($folder . '/counts/????-??-??') ?: [] as $day) {
        if (basename($day) < gmdate('Y-m-d')) {
            foreach (glob($day . '/*') ?: [] as $counter) {
                @unlink($counter);
            }
            @rmdir($day);
        }
    }
    foreach (glob($folder . '/*.part') ?: [] as $part) {
        if ((int) @filemtime($part) < time() - LEFT_BEHIND_AFTER) {
            @unlink($part);
        }
    }
}

/* On the disk, as far as this PHP can ask for that (from 8.1 on). */
function sync(mixed $stream): bool
{
    return !function_exists('fsync') || @fsync($stream);
}

/* Whole and on the disk, or not at all. The part's name is taken before the name of the whole is looked for: so no two
 * files ever get one name. */
function store(string $folder, string $content): bool
{
    $name = $folder . '/' . gmdate('Ymd-His') . '-' . bin2hex(random_bytes(16));
    $file = @fopen("$name.part", 'xb');
    if ($file === false) {
        return false;
    }
    $written = @fwrite($file, $content) === strlen($content) && fflush($file) && sync($file);
    $written = fclose($file) && $written;
    if (!$written || file_exists("$name.txt") || !@rename("$name.part", "$name.txt")) {
        @unlink("$name.part");
        return false;
    }
    // The new name too, where the file system can do that for a folder.
    $entries = @fopen($folder, 'rb');
    if ($entries !== false) {
        sync($entries);
    }
    return true;
}

/* Stores it and counts it for its sender, both or neither. The status of the answer: 200, 429 once the day's number is
 * used up, or 500. */
function take(string $folder, string $content): int
{
    $counter = open_counter($folder);
    if ($counter === null) {
        return 500;
    }
    $count = (int) stream_get_contents($counter);
    if ($count >= daily_limit()) {
        return 429;
    }
    // Counted first: a count that finds no room leaves nothing to take back.
    if (!write_count($counter, $count + 1)) {
        return 500;
    }
    if (!store($folder, $content)) {
        write_count($counter, $count);
        return 500;
    }
    return 200;
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
    if ($file['size'] === 0) {
        finish(200, 'Nothing to store.');
    }
    $content = @file_get_contents($file['tmp_name']);
    if ($content === false) {
        finish(500, 'Could not be stored.');
    }
    $lines = good_lines($content);
    if ($lines === []) {
        finish(400, 'Not a contribution.');
    }
    match (take($folder, implode("\r\n", $lines) . "\r\n")) {
        200 => finish(200, 'Thank you: ' . count($lines) . ' line(s).'),
        429 => finish(429, 'Too many files today.'),
        default => finish(500, 'Could not be stored.'),
    };
}

main();
