#include "adbclient.h"
#include "groupactions.h"
#include "deviceactions.h"
#include "adbjob.h"
#include "adbpool.h"
#include "adbworkpool.h"
#include "controller.h"
#include "devicegroupmanager.h"
#include "groupoperation.h"
#include "groupserials.h"
#include "keymappingprofile.h"
#include "phonefixture.h"
#include "testfiles.h"

#include <QtTest>

#include <unistd.h>

// A rack of simulated phones through Debian's real adb: operations on every phone, each with its own
// row and verdict; group control from a host phone; the groups back as the user left them; the adb
// server restarted from the menu. Stopping a whole group is proven by tst_phonegrid.
class TestRack : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PhoneFixture> m_fixture;
    QTemporaryDir m_files;
    QList<PhoneSimProcess *> m_good; // three phones that accept installs
    PhoneSimProcess *m_refusing = nullptr;
    PhoneSimProcess *m_slow = nullptr;

    QString writeFile(const QString &name, const QByteArray &content)
    {
        return TestFiles::write(m_files.filePath(name), content) ? m_files.filePath(name) : QString();
    }

    // What phonesim's package manager takes for a package: a zip's first bytes.
    static QByteArray apkBytes(int size) { return QByteArray("PK\x03\x04", 4) + QByteArray(size, 'a'); }

    // A group of its own over the given phones, in this order.
    static void fill(DeviceGroup &group, const QList<PhoneSimProcess *> &phones)
    {
        for (PhoneSimProcess *phone : phones)
            group.appendDevice(new Device(nullptr, phone->serial()));
    }

    // adb processes started by this test that are still alive.
    static QStringList adbChildren()
    {
        QStringList found;
        for (const QString &pid : QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const QString stat = QString::fromUtf8(TestFiles::read("/proc/" + pid + "/stat"));
            const int open = stat.indexOf('('), close = stat.lastIndexOf(')');
            if (stat.mid(open + 1, close - open - 1) == "adb" && stat.mid(close + 2).section(' ', 1, 1).toInt() == getpid())
                found << pid;
        }
        return found;
    }

    // The control messages of one type a phone has read since `since` (ms since the epoch).
    static QList<QJsonObject> readSince(const PhoneSimProcess *phone, const QString &type, qint64 since)
    {
        QList<QJsonObject> found;
        for (const QJsonObject &line : phone->journal("control")) {
            if (line["type"].toString() == type && qint64(line["time"].toDouble()) >= since)
                found.append(line);
        }
        return found;
    }

    QStringList tmpListing(PhoneSimProcess *phone) const
    {
        const AdbRunner::Result listing = m_fixture->adb().run({"-s", phone->serial(), "shell", "ls", "/data/local/tmp"});
        return QString::fromUtf8(listing.out).split('\n', Qt::SkipEmptyParts);
    }

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        m_fixture = std::make_unique<PhoneFixture>();
        // Four sizes for group control; the last two phones refuse installs and push slowly.
        const QList<QPair<QSize, QStringList>> phones{
            {{1080, 2400}, {}}, {{720, 1600}, {}}, {{1080, 2340}, {}},
            {{1440, 3200}, {"--fail-install", "INSTALL_FAILED_OLDER_SDK"}}, {{720, 1600}, {"--slow-sync", "65536"}}};
        for (const auto &[size, extra] : phones) {
            PhoneSimProcess *phone = m_fixture->addPhone(size, extra);
            QVERIFY2(phone, qPrintable(m_fixture->error()));
            m_good << phone;
        }
        m_slow = m_good.takeLast();
        m_refusing = m_good.takeLast();
        DeviceGroupManager::setDefaultFolder(m_files.filePath("groups"));
        DeviceGroup::setStaggerIntervals({0, 0, 0});
    }

    void cleanupTestCase() { m_fixture.reset(); }

    void init()
    {
        // No phones remembered by another test come back by themselves.
        QFile::remove(m_files.filePath("groups/device_groups.json"));
    }

    void cleanup()
    {
        AdbWorkPool::instance()->setMaxRunning(8);
        AdbJob::setTimeouts(30000, 300000);
    }

    void installReportsEveryPhone()
    {
        const QByteArray apk = apkBytes(200000);
        DeviceGroup group;
        fill(group, m_good + QList<PhoneSimProcess *>{m_refusing});
        GroupOperation *operation = group.actions()->installApk(writeFile("rack.apk", apk));
        QCOMPARE(operation->rowCount(), 4);
        QTRY_VERIFY_WITH_TIMEOUT(!operation->running(), 30000);

        for (int row = 0; row < 3; ++row) {
            QCOMPARE(operation->state(row), GroupOperation::Done);
            QCOMPARE(operation->output(row), QString("Success"));
            QCOMPARE(m_good[row]->journal("install").last()["sha256"].toString(), TestFiles::sha256(apk));
        }
        QCOMPARE(operation->state(3), GroupOperation::Failed);
        QVERIFY2(operation->output(3).startsWith("Failure [INSTALL_FAILED_OLDER_SDK"), qPrintable(operation->output(3)));
        QCOMPARE(operation->summary(), QString("3 done, 1 failed"));
        QVERIFY(operation->report().startsWith("Device 1:\n" + QString(32, '-') + "\nSuccess\n\n\n"));

        // The temporary copy is gone from every phone, also where the install failed; the clean-up
        // runs after the verdict.
        QTRY_COMPARE_WITH_TIMEOUT(AdbWorkPool::instance()->activeCount(), 0, 10000);
        for (PhoneSimProcess *phone : m_good + QList<PhoneSimProcess *>{m_refusing}) {
            const QStringList left = tmpListing(phone);
            QVERIFY2(left.filter(".apk").isEmpty(), qPrintable(phone->serial() + ": " + left.join(' ')));
        }

        // Retry reruns only the failed phone.
        const int installsBefore = m_good[0]->journal("install").size();
        operation->retryFailed();
        QCOMPARE(operation->state(0), GroupOperation::Done);
        QTRY_VERIFY_WITH_TIMEOUT(!operation->running(), 30000);
        QCOMPARE(operation->state(3), GroupOperation::Failed);
        QCOMPARE(m_good[0]->journal("install").size(), installsBefore);
        QCOMPARE(m_refusing->journal("install").size(), 2);

        // "install" typed in the command dialog: adb streams the package, the verdict is the same.
        operation = group.actions()->executeADBCommand("install -r " + writeFile("typed.apk", apk));
        QTRY_VERIFY_WITH_TIMEOUT(!operation->running(), 30000);
        QCOMPARE(operation->summary(), QString("3 done, 1 failed"));
        QVERIFY2(operation->output(3).startsWith("Failure [INSTALL_FAILED_OLDER_SDK"), qPrintable(operation->output(3)));
        QCOMPARE(m_good[1]->journal("install").last().value("path").toString(), QString("(streamed)"));
        QCOMPARE(m_good[1]->journal("install").last()["sha256"].toString(), TestFiles::sha256(apk));

        // A package that cannot be pushed is never installed; the clean-up still runs.
        const int installs = m_good[0]->journal("install").size();
        operation = group.actions()->installApk(m_files.filePath("never written.apk"));
        QTRY_VERIFY_WITH_TIMEOUT(!operation->running(), 30000);
        QCOMPARE(operation->summary(), QString("4 failed"));
        QVERIFY2(operation->output(0).contains("No such file or directory"), qPrintable(operation->output(0)));
        QCOMPARE(m_good[0]->journal("install").size(), installs);
        QTRY_COMPARE_WITH_TIMEOUT(AdbWorkPool::instance()->activeCount(), 0, 10000);
        QVERIFY(m_good[0]->journal("shell").last().value("command").toString().startsWith("rm -f /data/local/tmp/korvel-"));
    }

    void awkwardNamesArriveIntact_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("spaces and parentheses") << "My App (1).apk";
        QTest::newRow("quotes") << "it's \"quoted\".apk";
        QTest::newRow("command separator") << "a;reboot;.apk";
        QTest::newRow("substitution") << "$(reboot) $HOME `id`.apk";
        QTest::newRow("non-ASCII") << "应用 Ünïcode ç.apk";
        QTest::newRow("error in the name") << "error failed Failure [X].apk";
    }

    void awkwardNamesArriveIntact()
    {
        QFETCH(QString, name);
        const QByteArray apk = apkBytes(5000 + name.size());
        const QString path = writeFile(name, apk);
        QVERIFY(!path.isEmpty());
        PhoneSimProcess *phone = m_good[0];
        DeviceGroup group;
        fill(group, {phone});

        GroupOperation *install = group.actions()->installApk(path);
        QTRY_VERIFY_WITH_TIMEOUT(!install->running(), 30000);
        QCOMPARE(install->state(0), GroupOperation::Done);
        QCOMPARE(phone->journal("install").last()["sha256"].toString(), TestFiles::sha256(apk));

        GroupOperation *upload = group.actions()->uploadFile(path);
        QTRY_VERIFY_WITH_TIMEOUT(!upload->running(), 30000);
        QCOMPARE(upload->state(0), GroupOperation::Done);
        const QJsonObject push = phone->journal("push").last();
        QCOMPARE(push.value("path").toString(), "/sdcard/Download/" + name);
        QCOMPARE(push["sha256"].toString(), TestFiles::sha256(apk));

        // Nothing of the name ever reached the phone's shell, so nothing in it ran.
        QVERIFY(phone->journal("reboot").isEmpty());
        for (const QJsonObject &shell : phone->journal("shell"))
            QVERIFY2(!shell.value("command").toString().contains("reboot"), qPrintable(shell.value("command").toString()));
        QTRY_COMPARE_WITH_TIMEOUT(AdbWorkPool::instance()->activeCount(), 0, 10000);
        QVERIFY(tmpListing(phone).filter(".apk").isEmpty());
    }

    void slowUploadsEndByTimeOutOrCancel()
    {
        // 65536 bytes a second: half a minute. A silent push past the transfer time-out is given up.
        const QString path = writeFile("big.bin", QByteArray(2 * 1024 * 1024, 'x'));
        AdbJob::setTimeouts(30000, 1000);
        DeviceGroup alone;
        fill(alone, {m_slow});
        GroupOperation *operation = alone.actions()->uploadFile(path);
        QTRY_VERIFY_WITH_TIMEOUT(!operation->running(), 10000);
        QCOMPARE(operation->summary(), QString("1 timed out"));
        QTRY_VERIFY_WITH_TIMEOUT(adbChildren().isEmpty(), 10000);
        AdbJob::setTimeouts(30000, 300000);

        // One adb process at a time, as the user can set it: the second phone waits its turn.
        QCOMPARE(AdbWorkPool::instance()->maxRunning(), 8);
        AdbWorkPool::instance()->setMaxRunning(1);
        DeviceGroup group;
        fill(group, {m_slow, m_good[1]});
        operation = group.actions()->uploadFile(path);
        QTRY_COMPARE_WITH_TIMEOUT(operation->state(0), GroupOperation::Running, 10000);
        QCOMPARE(operation->state(1), GroupOperation::Queued);
        // Another action waits for this one instead of leaving it running out of reach.
        QCOMPARE(group.actions()->executeADBCommand("shell true"), operation);
        QVERIFY(operation->notice().contains("is still running"));
        QElapsedTimer clock;
        clock.start();
        operation->cancel();
        QTRY_VERIFY_WITH_TIMEOUT(!operation->running(), 1000);
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(operation->summary(), QString("2 cancelled"));
        QTRY_VERIFY_WITH_TIMEOUT(adbChildren().isEmpty(), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(AdbWorkPool::instance()->activeCount(), 0, 1000);
        // The queued phone never started; the slow one kept no partial file.
        for (const QJsonObject &push : m_good[1]->journal("push"))
            QVERIFY(!push.value("path").toString().endsWith("big.bin"));
        QVERIFY(!QFile::exists(m_slow->sandboxPath("/sdcard/Download/big.bin")));
    }

    void installEndedWithItsSessionStillCleansUp()
    {
        DeviceGroup group;
        fill(group, {m_slow});
        Device *device = group.devices().at(0);
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->controller() != nullptr, 20000);
        QSignalSpy messages(device, &Device::deviceMessage);
        const qsizetype shells = m_slow->journal("shell").size();
        // Half a minute at the phone's 64 KiB a second; the session ends a moment into it.
        device->actions()->installAPK(writeFile("slow.apk", apkBytes(2 * 1024 * 1024)));
        QTRY_COMPARE_WITH_TIMEOUT(AdbWorkPool::instance()->runningCount(), 1, 5000);
        device->stopScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"APK installation failed: Cancelled", QVariant::fromValue(MessageKind::Error), 100000}), 5000);
        QTRY_VERIFY_WITH_TIMEOUT(AdbWorkPool::instance()->activeCount() == 0, 20000);
        const QList<QJsonObject> commands = m_slow->journal("shell").mid(shells);
        QVERIFY(std::any_of(commands.cbegin(), commands.cend(), [](const QJsonObject &shell) {
            return shell.value("command").toString().startsWith("rm -f /data/local/tmp/korvel-");
        }));
        QVERIFY(tmpListing(m_slow).filter(".apk").isEmpty());
        QVERIFY(m_slow->journal("install").isEmpty());
    }

    void commandsScriptsAndScreenshotsAnswerInEachPhonesRow()
    {
        // Nothing is typed into adb: a bare shell gets the end of its input and returns.
        QVERIFY(!AdbClient::isError(AdbClient::run({"-s", m_good[0]->serial(), "shell"})));

        // A bare shell gets no input and ends; blank lines are skipped; a failed line stops nothing.
        DeviceGroup group;
        fill(group, {m_good[0], m_good[1]});
        GroupOperation *operation = group.actions()->executeADBCommand("shell\n\n  shell nosuch  \nshell echo next");
        QTRY_VERIFY_WITH_TIMEOUT(!operation->running(), 10000);
        QCOMPARE(operation->summary(), QString("2 failed"));
        const QString each = QString(32, '-') + "\n\n/system/bin/sh: nosuch: inaccessible or not found\nnext\n[failed]\n\n\n";
        QCOMPARE(operation->report(), "Device 1:\n" + each + "Device 2:\n" + each);

        // A phone's own answer ends its row, whenever it comes; other news of the phone does not.
        operation = group.actions()->runAutojs(writeFile("hello.js", "toast('hello');"));
        emit group.devices().at(0)->deviceMessage("Back online, starting again", MessageKind::Info, 2000);
        emit group.devices().at(1)->deviceMessage("Screenshot Saved", MessageKind::Success, 2000);
        QTRY_VERIFY_WITH_TIMEOUT(!operation->running(), 15000);
        for (int row = 0; row < 2; ++row) {
            QCOMPARE(operation->output(row), QString("AutoJS script started"));
            QTRY_VERIFY_WITH_TIMEOUT(!m_good[row]->journal("autojs").isEmpty(), 5000);
        }
        // Unmirrored phones have no picture to save and say so at once (tst_devicesession saves one).
        operation = group.actions()->screenshotAllDevices();
        QVERIFY(!operation->running());
        QCOMPARE(operation->summary(), QString("2 failed"));
        QCOMPARE(operation->output(1), QString("Not Connected"));
    }

    void logcatStreamsUntilCancelled()
    {
        // The phone's own command dialog: one row, run through the same table.
        Device device(nullptr, m_good[2]->serial());
        GroupOperation operation;
        // Silence for a third of a second would end it; the lines keep it going far longer.
        AdbJob::setTimeouts(300, 300000);
        operation.runCommand({QVariant::fromValue<QObject *>(&device)}, "logcat");
        QCOMPARE(operation.rowCount(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(operation.output(0).count("log line") >= 30, 10000);
        QCOMPARE(operation.state(0), GroupOperation::Running);
        operation.cancel();
        QTRY_COMPARE_WITH_TIMEOUT(operation.state(0), GroupOperation::Cancelled, 1000);
        QVERIFY(operation.output(0).contains("I phonesim: log line 3\n"));
        QTRY_VERIFY_WITH_TIMEOUT(adbChildren().isEmpty(), 10000);
    }

    // A touch, a mapped key, a wheel turn, a phrase and a key from the host reach every phone after its
    // own random delay, drawn by each session from the delay the group came back with, at its own scale;
    // what another phone plays drives that phone alone.
    void groupControlReplaysTheHostOnEveryPhone()
    {
        const QList<PhoneSimProcess *> phones = m_good + QList<PhoneSimProcess *>{m_refusing};
        // The phones encode sizes in multiples of 8, so 2340 lines arrive as 2336.
        const QList<QSize> frames{{1080, 2400}, {720, 1600}, {1080, 2336}, {1440, 3200}};
        DeviceGroup group;
        group.renameTo("Rack");
        // As the group comes back from its file, before any session starts.
        group.loadSettings({{"clickDelaySeconds", 4}});
        group.setMaxSize(0);
        // Added as a scan adds them, so that they take the group's settings.
        QVERIFY(group.addDevices({{phones[0]->serial()}, {phones[1]->serial()}, {phones[2]->serial()}, {phones[3]->serial()}}));
        QTRY_COMPARE(group.deviceCount(), 4);
        const auto device = [&](int row) { return group.devices().at(row); };
        // Started and started again: the second sessions' controllers draw their delays too.
        for (int round = 0; round < 2; ++round) {
            if (round == 1) {
                group.stopAllDevices();
                for (int row = 0; row < 4; ++row)
                    QTRY_VERIFY_WITH_TIMEOUT(!device(row)->running(), 10000);
            }
            group.startAllDevices();
            for (int row = 0; row < 4; ++row) {
                QTRY_VERIFY_WITH_TIMEOUT(device(row)->controller() != nullptr, 20000);
                QTRY_COMPARE_WITH_TIMEOUT(device(row)->frameSize(), frames.at(row), 20000);
            }
        }
        group.startGroupControl();

        // Each controller drew a delay of its own below the stored bound; the host's is kept for later.
        const auto delays = [&] {
            QList<int> found;
            for (int row = 0; row < 4; ++row)
                found << device(row)->controller()->clickDelayMilliSeconds();
            return found;
        };
        QList<int> drawn = delays();
        for (const int delay : drawn)
            QVERIFY2(delay >= 0 && delay < 4000, qPrintable(QString::number(delay)));
        QVERIFY(QSet<int>(drawn.cbegin() + 1, drawn.cend()).size() > 1);

        KeyMappingProfile profile("Farm");
        QVERIFY(profile.addMapping(Qt::Key_F, 0, "F", 0.25, 0.75, 1));
        device(0)->setCurrentKeyMappingProfile(&profile);
        device(0)->setShowSize(QSize(540, 1200));
        const qint64 sentAt = QDateTime::currentMSecsSinceEpoch();
        device(2)->controller()->actionBack();
        Controller *host = device(0)->controller();
        for (const auto action : {ControlMsg::TouchDown, ControlMsg::TouchUp})
            host->send(ControlMsg::injectTouch(quint64(-2), action, 1, 1, {QPoint(540, 1200), QSize(1080, 2400)},
                                               action == ControlMsg::TouchDown ? 1.0f : 0.0f));
        host->handleKeyEvent(InputEvent::KeyPress, Qt::Key_F, 0, "f");
        host->handleKeyEvent(InputEvent::KeyRelease, Qt::Key_F, 0, "f");
        host->handleWheelEvent(270, 600, 0, 120, 0);
        host->actionInputText("收菜 ✓");
        host->actionHome();
        device(0)->setCurrentKeyMappingProfile(nullptr);

        const QList<QPoint> centres{{540, 1200}, {360, 800}, {540, 1168}, {720, 1600}};
        const QList<QPoint> taps{{270, 1800}, {180, 1200}, {270, 1752}, {360, 2400}};
        // Where an event landed, on the screen size it was written for.
        const auto where = [](const QJsonObject &e) {
            return QRect(e["x"].toInt(), e["y"].toInt(), e["screenWidth"].toInt(), e["screenHeight"].toInt());
        };
        for (int row = 0; row < 4; ++row) {
            // Copies keep their order, so phone 3's Back would come before the host's Home anywhere.
            const auto keycodes = [&] {
                QList<int> codes;
                for (const QJsonObject &key : readSince(phones[row], "InjectKeycode", sentAt))
                    codes << key["keycode"].toInt();
                return codes;
            };
            const QList<int> expected = row == 2 ? QList<int>{4, 4, 3, 3} : QList<int>{3, 3};
            QTRY_COMPARE_WITH_TIMEOUT(keycodes().size(), expected.size(), 10000);
            QCOMPARE(keycodes(), expected);
            const QList<QJsonObject> pasted = readSince(phones[row], "SetClipboard", sentAt);
            QVERIFY(pasted.size() == 1 && pasted[0]["text"].toString() == "收菜 ✓");
            const QList<QJsonObject> touches = readSince(phones[row], "InjectTouchEvent", sentAt);
            QCOMPARE(touches.size(), 4);
            for (int i = 0; i < 4; ++i) {
                QCOMPARE(touches[i]["action"].toInt(), i % 2);
                QCOMPARE(where(touches[i]), QRect(i < 2 ? centres.at(row) : taps.at(row), frames.at(row)));
            }
            QCOMPARE(touches[0]["pointerId"].toDouble(), -2.0);
            const QList<QJsonObject> wheel = readSince(phones[row], "InjectScrollEvent", sentAt);
            QCOMPARE(wheel.size(), 1);
            QCOMPARE(where(wheel[0]), QRect(centres.at(row), frames.at(row)));
            QCOMPARE(wheel[0]["vscroll"].toDouble(), 1.0);
            // The phone's own delay, none for the host's own input. Qt's coarse timers, used from two
            // seconds on, may fire 5% early; the upper bound is wide, the machine is shared.
            const int delay = row == 0 ? 0 : drawn.at(row);
            const qint64 after = qint64(touches[0]["time"].toDouble()) - sentAt;
            QVERIFY2(after >= delay - delay / 20 - 1 && after <= delay + 3000,
                     qPrintable(QString("phone %1: %2 ms for a %3 ms delay").arg(row).arg(after).arg(delay)));
        }

        // A changed delay is drawn anew for the followers alone, in the background; back to no delay,
        // the phones keep the delays they drew.
        const auto applyDelay = [&](int seconds) {
            group.setClickDelaySeconds(seconds);
            group.applySettingsToAllDevices();
            return QTest::qWaitFor([&] { return group.findChildren<QFutureWatcherBase *>().isEmpty(); });
        };
        QVERIFY(applyDelay(1));
        const int hostDelay = drawn[0];
        drawn = delays();
        QCOMPARE(drawn[0], hostDelay);
        for (const int delay : drawn.mid(1))
            QVERIFY2(delay < 1000, qPrintable(QString::number(delay)));
        QVERIFY(applyDelay(0));
        QCOMPARE(delays(), drawn);
        group.stopAllDevices();
        for (int row = 0; row < 4; ++row)
            QTRY_VERIFY_WITH_TIMEOUT(!device(row)->running(), 10000);
    }

    void groupsWithPhonesSurviveARestart()
    {
        // Not in the order adb lists them.
        const QStringList rack{m_good[2]->serial(), m_good[0]->serial()};
        {
            DeviceGroupManager first;
            first.createDeviceGroup("Rack");
            QVERIFY(first.deviceGroups().at(1)->addDevices({{rack[0]}, {rack[1]}}));
            QVERIFY(first.deviceGroups().at(0)->addDevices({{m_good[1]->serial()}}));
            QTRY_COMPARE(first.totalDeviceCount(), 3);
            QCOMPARE(serialsOf(first.deviceGroups().at(1)), rack);
        }
        const QJsonDocument saved = QJsonDocument::fromJson(TestFiles::read(m_files.filePath("groups/device_groups.json")));
        QCOMPARE(saved["device_groups"][1]["devices"].toArray(), QJsonArray::fromStringList(rack));

        DeviceGroupManager again;
        QTRY_COMPARE_WITH_TIMEOUT(serialsOf(again.deviceGroups().at(1)), rack, 15000);
        QTRY_COMPARE_WITH_TIMEOUT(serialsOf(again.deviceGroups().at(0)), QStringList{m_good[1]->serial()}, 15000);
        QVERIFY(again.availableDeviceInfos().isEmpty());
    }

    void restartedAdbServerStartsWithoutPhones()
    {
        // A phone's details still being read would start a server of its own between kill and start.
        QThreadPool::globalInstance()->waitForDone();
        AdbPool::instance()->waitForDone();
        DeviceGroupManager manager;
        QSignalSpy restarted(&manager, &DeviceGroupManager::adbServerRestarted);
        manager.restartADBServer();
        QVERIFY(restarted.wait(30000));
        QCOMPARE(restarted.at(0).at(0).toBool(), true);

        // The new server knows no phone yet, and an empty list is no failure.
        const QString listing = AdbClient::run({"devices", "-l"});
        QVERIFY2(listing.startsWith("List of devices attached"), qPrintable(listing));
        QVERIFY(AdbClient::devices().isEmpty());
        // adb's own words reach the user when it cannot do what was asked.
        const QString failed = AdbClient::run({"-s", m_good[0]->serial(), "shell", "true"});
        QVERIFY2(failed.startsWith("[error] adb command failed (exit code 1): "), qPrintable(failed));

        for (const auto &phone : m_fixture->phones()) {
            m_fixture->adb().run({"connect", phone->serial()});
            QTRY_VERIFY_WITH_TIMEOUT(m_fixture->adb().listed(phone->serial()), 10000);
        }
    }
};

QTEST_MAIN(TestRack)
#include "tst_rack.moc"
